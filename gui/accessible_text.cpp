#include "accessible_text.h"

#include "app/workspace.h"
#include "codec/picture_type.h"
#include "qt_text.h"
#include "record_table_model.h"

namespace korvatek::gui {

using settings::MessageKey;

namespace {

QString text(const settings::MessageTable& table, MessageKey key) { return toQString(table.text(key)); }

// "0065" read as the number a person says.
QString number(const QString& cell) {
    bool ok = false;
    const int value = cell.toInt(&ok);
    return ok ? QString::number(value) : cell;
}

QString markWords(const settings::MessageTable& table, const RecordTableModel& rows, int row, int column) {
    return rows.cellText(row, column).isEmpty() ? QString() : text(table, MessageKey::MsgRowReplaced);
}

}  // namespace

QString depthWords(const settings::MessageTable& table, int bits, bool compressed, const QString& typeText) {
    if (bits <= 0) return text(table, MessageKey::MsgRowUnknownType).arg(typeText);
    return text(table, compressed ? MessageKey::MsgRowBitsCompressed : MessageKey::MsgRowBits).arg(bits);
}

QString pictureAccessibleText(const settings::MessageTable& table, const RecordTableModel& rows, int row, int column) {
    if (column == rows.columnCount()) return markWords(table, rows, row, column);
    if (column != 1) return {};
    // The Type cell's first two characters are the code the commands read back from it.
    const QString type = rows.cellText(row, 5);
    bool ok = false;
    const int code = type.left(2).toInt(&ok, 16);
    const int bits = ok ? codec::bitsForTypeCode(code).value_or(0) : 0;
    return text(table, MessageKey::MsgRowPicture)
        .arg(number(rows.cellText(row, 1)), rows.cellText(row, 3), rows.cellText(row, 4),
             depthWords(table, bits, code > 0x80, type));
}

QString glyphAccessibleText(const settings::MessageTable& table, const RecordTableModel& rows, int row, int column) {
    if (column == rows.columnCount()) return markWords(table, rows, row, column);
    if (column != 1) return {};
    return text(table, MessageKey::MsgRowGlyph).arg(number(rows.cellText(row, 1)), rows.cellText(row, 3), rows.cellText(row, 4));
}

QString previewDescription(const app::Workspace& ws) {
    const settings::MessageTable& table = ws.messages;
    const app::Preview& shown = ws.preview;
    const QString width = QString::number(shown.width);
    const QString height = QString::number(shown.height);
    switch (shown.source) {
        case app::Preview::Source::Picture: {
            const QString type = QStringLiteral("%1").arg(ws.picture.typeCode, 2, 16, QLatin1Char('0')).toUpper();
            const QString depth = depthWords(table, ws.picture.bits, ws.picture.compression == "Yes", type);
            if (!ws.ShownPicture) return text(table, MessageKey::MsgPreviewFilePicture).arg(width, height, depth);
            return text(table, MessageKey::MsgRowPicture).arg(QString::number(*ws.ShownPicture), width, height, depth);
        }
        case app::Preview::Source::Glyph: {
            const int row = ws.ListView2Selected;
            const bool listed = row >= 0 && row < static_cast<int>(ws.ListView2.size());
            const int code = listed ? ws.ListView2[static_cast<std::size_t>(row)].code : static_cast<int>(ws.CurrentGlyphNumber);
            return text(table, MessageKey::MsgRowGlyph).arg(QString::number(code), width, height);
        }
        case app::Preview::Source::None:
            break;
    }
    return text(table, MessageKey::MsgPreviewNothing);
}

}  // namespace korvatek::gui
