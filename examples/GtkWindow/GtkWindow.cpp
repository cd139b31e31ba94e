// A window whose texts all come from a strings file, in the language that is chosen in it.
#include <filesystem>
#include <gtk/gtk.h>
#include <string>
#include <vector>

#include <OrvaLanguage/Texts.hpp>

namespace {

constexpr const char* kFile = "GtkWindow.strings";

// A copy, which survives the next load. Where the file lacks the key, the key itself is shown: users
// can still work, and can say what is missing.
std::string Text(const std::string& key) {
    return OrvaLanguage::TextOr(key.c_str(), key.c_str());
}

// A protected text keeps its first language until the process exits, so it has a key for each.
std::string ProtectedText(const std::string& name) {
    return Text("IDE_" + Text("QVLANG") + "_" + name);
}

class Window {
public:
    explicit Window(const std::vector<std::string>& languages) {
        for (const std::string& language : languages) {
            gtk_string_list_append(m_names, language.c_str());
        }
        gtk_label_set_mnemonic_widget(GTK_LABEL(m_languageLabel), m_languages);
        GtkWidget* const row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 12);
        gtk_box_append(GTK_BOX(row), m_languageLabel);
        gtk_box_append(GTK_BOX(row), m_languages);
        GtkWidget* const column = gtk_box_new(GTK_ORIENTATION_VERTICAL, 12);
        g_object_set(column, "margin-start", 18, "margin-end", 18, "margin-top", 18,
                     "margin-bottom", 18, nullptr);
        for (GtkWidget* child : {row, m_question, m_save, m_discard, m_license, m_missing}) {
            gtk_box_append(GTK_BOX(column), child);
        }
        for (GtkWidget* label : {m_question, m_license, m_missing}) {
            gtk_label_set_xalign(GTK_LABEL(label), 0);
        }
        gtk_window_set_default_size(GTK_WINDOW(m_window), 280, -1);
        gtk_window_set_child(GTK_WINDOW(m_window), column);
        SetTexts();
        g_signal_connect_swapped(m_languages, "notify::selected", G_CALLBACK(ChangeLanguage), this);
        g_signal_connect_swapped(m_save, "clicked", G_CALLBACK(gtk_window_close), m_window);
        g_signal_connect_swapped(m_discard, "clicked", G_CALLBACK(gtk_window_close), m_window);
        gtk_window_present(GTK_WINDOW(m_window));
    }

private:
    static void ChangeLanguage(Window* window) {
        const guint chosen = gtk_drop_down_get_selected(GTK_DROP_DOWN(window->m_languages));
        const char* const language = gtk_string_list_get_string(window->m_names, chosen);
        // After a failed load, the window goes on showing its copies.
        if (ZuLoadStrings(language, kFile, nullptr) > 0) {
            window->SetTexts();
        }
    }

    // Every text that the window shows is set here, so that none keeps the former language.
    void SetTexts() {
        const bool isRightToLeft = Text("TEXT_DIRECTION") == "rtl";
        gtk_widget_set_default_direction(isRightToLeft ? GTK_TEXT_DIR_RTL : GTK_TEXT_DIR_LTR);
        gtk_window_set_title(GTK_WINDOW(m_window), Text("WINDOW_TITLE").c_str());
        gtk_label_set_text(GTK_LABEL(m_languageLabel), Text("LABEL_LANGUAGE").c_str());
        SelectLanguage(Text("QVLANG"));
        gtk_label_set_text(GTK_LABEL(m_question), Text("ASK_SAVE").c_str());
        gtk_button_set_label(GTK_BUTTON(m_save), Text("BTN_SAVE").c_str());
        gtk_button_set_label(GTK_BUTTON(m_discard), Text("BTN_DISCARD").c_str());
        gtk_label_set_text(GTK_LABEL(m_license), ProtectedText("LICENSE").c_str());
        gtk_label_set_text(GTK_LABEL(m_missing), Text("MISSING_KEY").c_str());  // in no section
    }

    void SelectLanguage(const std::string& language) {
        const guint count = g_list_model_get_n_items(G_LIST_MODEL(m_names));
        for (guint i = 0; i < count; ++i) {
            if (gtk_string_list_get_string(m_names, i) == language) {
                gtk_drop_down_set_selected(GTK_DROP_DOWN(m_languages), i);
            }
        }
    }

    // All are GTK's, which frees them with the window.
    GtkWidget* m_window = gtk_window_new();
    GtkStringList* m_names = gtk_string_list_new(nullptr);
    GtkWidget* m_languages = gtk_drop_down_new(G_LIST_MODEL(m_names), nullptr);
    GtkWidget* m_languageLabel = gtk_label_new(nullptr);
    GtkWidget* m_question = gtk_label_new(nullptr);
    GtkWidget* m_save = gtk_button_new();
    GtkWidget* m_discard = gtk_button_new();
    GtkWidget* m_license = gtk_label_new(nullptr);
    GtkWidget* m_missing = gtk_label_new(nullptr);
};

}  // namespace

int main() {
    gtk_init();
    // A null bundle is the one around the executable; its resources folder has the file.
    const std::filesystem::path executable = std::filesystem::read_symlink("/proc/self/exe");
    const auto languages =
        OrvaLanguage::Sections(executable.parent_path().parent_path() / "Resources" / kFile);
    const auto preferred = OrvaLanguage::PreferredLanguages();
    if (!languages || OrvaLanguage::LoadPreferred(preferred, kFile, nullptr).entries < 1) {
        g_printerr("GtkWindow: no texts in %s\n", kFile);
        return 1;
    }
    const Window window(*languages);
    while (g_list_model_get_n_items(gtk_window_get_toplevels()) > 0) {
        g_main_context_iteration(nullptr, TRUE);
    }
}
