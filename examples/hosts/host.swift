// Swift on macOS, with a bridging header that says #include <OrvaLanguage/OrvaLanguage.h>:
// swiftc -import-objc-header Bridging.h host.swift -o Host -lOrvaLanguage -I… -L…
import Foundation

func text(_ key: String, _ fallback: String) -> String {
    guard let found = ZuGetLocalizedString(key) else { return fallback }
    return String(cString: found)  // a copy
}

guard ZuLoadStrings("Deutsch", "Sample.strings", nil) > 0 else { fatalError("no texts") }
print(text("MENU_OPEN", "Open"))
print(text("MENU_NEW", "New"))
