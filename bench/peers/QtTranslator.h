#ifndef ORVALANGUAGE_BENCH_PEERS_QTTRANSLATOR_H
#define ORVALANGUAGE_BENCH_PEERS_QTTRANSLATOR_H

#include <QTranslator>

#include "bench/Corpus.h"

// Qt's translator. It maps the compiled catalog.
class QtTranslator {
public:
    static constexpr char kName[] = "Qt";

    explicit QtTranslator(const Corpus& corpus) {
        static_cast<void>(m_translator.load(QString::fromStdString(corpus.File("texts.qm"))));
    }

    // Null if the text is missing.
    QString LookUp(const char* key) const { return m_translator.translate("", key); }

    static bool IsFound(const QString& text, const char* /*key*/) { return !text.isNull(); }
    static std::string Utf8(const QString& text) { return text.toStdString(); }

private:
    QTranslator m_translator;
};

#endif
