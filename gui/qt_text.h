#pragma once
// Text between the core (UTF-8 std::string) and Qt. Menu and button captions escape "&",
// which Qt would otherwise take for a mnemonic.

#include <QString>

#include <string>

namespace korvatek::gui {

inline QString toQString(const std::string& text) { return QString::fromStdString(text); }
inline std::string toStdString(const QString& text) { return text.toStdString(); }

// The core joins lines with carriage returns; Qt's labels and boxes break on line feeds.
inline QString toDisplayText(const std::string& text) {
    QString display = toQString(text);
    display.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    display.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return display;
}

inline QString captionText(const std::string& caption) {
    return toQString(caption).replace(QLatin1Char('&'), QLatin1String("&&"));
}

// The caption as the person reads it: "&&" back to "&".
inline QString plainCaption(const QString& text) {
    QString plain = text;
    return plain.replace(QLatin1String("&&"), QLatin1String("&"));
}

}  // namespace korvatek::gui
