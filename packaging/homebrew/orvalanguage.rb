# The recipe for Homebrew, for the owner to start a tap with.
class Orvalanguage < Formula
  desc "User-interface texts in the user's language, from a strings file in a bundle"
  # PLACEHOLDER: remove this line, and fill in the next ones.
  raise "The location of the source is not decided: see docs/decisions.md."
  url "SOURCE_URL"
  version "1.0.0"
  sha256 "SOURCE_SHA256"

  depends_on "cli11" => :build
  depends_on "cmake" => :build
  depends_on "nlohmann-json" => :build
  depends_on "pkgconf" => :build
  depends_on "utf8cpp" => :build

  uses_from_macos "expat"

  on_linux do
    depends_on "nettle"
  end

  def install
    system "cmake", "-S", ".", "-B", "build", "-DORVA_BUILD_TESTS=OFF",
           "-DORVA_BUILD_EXAMPLES=OFF", *std_cmake_args
    system "cmake", "--build", "build"
    system "cmake", "--install", "build"
  end

  test do
    (testpath/"source.strings").write "QVLANG=en\nIDE_TEXT=\"Hello\"\n"
    shipped = shell_output("#{bin}/orva-strings protect source.strings")
    assert_match(/^IDE_TEXT="[0-9A-F]{64}"$/, shipped)
    (testpath/"host.c").write <<~C
      #include <OrvaLanguage/OrvaLanguage.h>
      int main(void) { return ZuGetLocalizedString("MISSING") != 0; }
    C
    system ENV.cc, "host.c", "-I#{include}", "-L#{lib}", "-lOrvaLanguage", "-o", "host"
    system "./host"
  end
end
