// A window whose texts all come from a strings file, in the language that is chosen in it.
#include <QApplication>
#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QWidget>
#include <initializer_list>
#include <string>
#include <vector>

#include <OrvaLanguage/Texts.hpp>

namespace {

constexpr const char* kFile = "QtWindow.strings";

// A copy, which survives the next load. Where the file lacks the key, the key itself is shown: users
// can still work, and can say what is missing.
QString Text(const std::string& key) {
    return QString::fromUtf8(OrvaLanguage::TextOr(key.c_str(), key.c_str()));
}

// A protected text keeps its first language until the process exits, so it has a key for each.
QString ProtectedText(const std::string& name) {
    return Text("IDE_" + Text("QVLANG").toStdString() + "_" + name);
}

class Window : public QWidget {
public:
    explicit Window(const std::vector<std::string>& languages) {
        for (const std::string& language : languages) {
            m_languages.addItem(QString::fromStdString(language));
        }
        m_languageLabel.setBuddy(&m_languages);
        m_layout.addRow(&m_languageLabel, &m_languages);
        for (QWidget* row : std::initializer_list<QWidget*>{&m_question, &m_save, &m_discard,
                                                            &m_license, &m_missing}) {
            m_layout.addRow(row);
        }
        setMinimumWidth(280);
        connect(&m_languages, &QComboBox::textActivated, this, &Window::ChangeLanguage);
        connect(&m_save, &QPushButton::clicked, this, &Window::close);
        connect(&m_discard, &QPushButton::clicked, this, &Window::close);
        SetTexts();
    }

private:
    void ChangeLanguage(const QString& language) {
        // After a failed load, the window goes on showing its copies.
        if (ZuLoadStrings(language.toUtf8(), kFile, nullptr) > 0) {
            SetTexts();
        }
    }

    // Every text that the window shows is set here, so that none keeps the former language.
    void SetTexts() {
        const bool isRightToLeft = Text("TEXT_DIRECTION") == "rtl";
        QApplication::setLayoutDirection(isRightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
        m_languages.setCurrentText(Text("QVLANG"));
        setWindowTitle(Text("WINDOW_TITLE"));
        m_languageLabel.setText(Text("LABEL_LANGUAGE"));
        m_question.setText(Text("ASK_SAVE"));
        m_save.setText(Text("BTN_SAVE"));
        m_discard.setText(Text("BTN_DISCARD"));
        m_license.setText(ProtectedText("LICENSE"));
        m_missing.setText(Text("MISSING_KEY"));  // in no section
    }

    // Before the widgets, which leave it when they are destroyed.
    QFormLayout m_layout{this};
    QLabel m_languageLabel, m_question, m_license, m_missing;
    QComboBox m_languages;
    QPushButton m_save, m_discard;
};

}  // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    // A null bundle is the one around the executable; its resources folder has the file.
    const QString path = QApplication::applicationDirPath() + "/../Resources/" + kFile;
    const auto languages = OrvaLanguage::Sections(path.toStdString());
    const auto preferred = OrvaLanguage::PreferredLanguages();
    if (!languages || OrvaLanguage::LoadPreferred(preferred, kFile, nullptr).entries < 1) {
        qCritical("QtWindow: no texts in %s", qPrintable(path));
        return 1;
    }
    Window window(*languages);
    window.show();
    return QApplication::exec();
}
