// The list models over the core's records, checked by Qt's model tester and cell by cell.
#include <QAbstractItemModelTester>
#include <QTest>

#include "app/scripted_interface.h"
#include "app/workspace.h"
#include "glyph_list_model.h"
#include "picture_list_model.h"
#include "test_classes.h"
#include "test_support.h"

namespace korvatek::gui::test {

class ModelsTest : public QObject {
    Q_OBJECT
private slots:
    void pictureListShowsEveryCellAsTheRecordHoldsIt() {
        app::ScriptedInterface answers;
        app::Workspace ws(answers);
        PictureListModel model(ws.ListView1);
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QCOMPARE(model.rowCount(), 0);
        QCOMPARE(model.columnCount(), 8);

        ws.PathGiven = true;
        ws.CommandLinePath = demoFlashPath().toStdString();
        ws.mnu_FileOpen();
        model.reload();
        QCOMPARE(model.rowCount(), 1701);
        for (int column = 1; column <= 8; ++column)
            QCOMPARE(model.headerData(column - 1, Qt::Horizontal).toString(),
                     QString::fromLatin1(firmware::kPictureColumnCaptions[column - 1]));
        for (int row = 0; row < model.rowCount(); ++row) {
            for (int column = 1; column <= 7; ++column)
                QCOMPARE(model.data(model.index(row, column - 1)).toString(),
                         QString::fromStdString(ws.ListView1[row].cell(column)));
            // The untouched mark (the single character 0) shows as nothing.
            QCOMPARE(model.data(model.index(row, 7)).toString(), QString());
        }
        QCOMPARE(model.cellText(0, 6), QStringLiteral("1B01958"));
        QCOMPARE(model.cellText(1700, 6), QStringLiteral("1B06908"));
        QCOMPARE(model.cellText(10, 1), QStringLiteral("0010"));
        QCOMPARE(model.cellText(10, 2), QStringLiteral("00A"));

        // A replacement mark changes one cell; the rows stay.
        ws.ListView1[3].status = "*";
        model.refreshCells();
        QCOMPARE(model.data(model.index(3, 7)).toString(), QStringLiteral("*"));
    }

    void recordsEmptiedBeforeTheViewsAreToldReadAsNothing() {
        std::vector<firmware::PictureRecord> records(3);
        records[2].number = "0002";
        PictureListModel model(records);
        QCOMPARE(model.rowCount(), 3);
        // A command empties the records and paints before the window reloads the model.
        records.clear();
        QCOMPARE(model.data(model.index(2, 0)).toString(), QString());
        QCOMPARE(model.cellText(2, 1), QString());
        model.refreshCells();
        QCOMPARE(model.rowCount(), 0);
    }

    void glyphListHasItsTenColumnsAndTakesRowsFromItsSource() {
        GlyphListModel empty;
        QAbstractItemModelTester emptyTester(&empty, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QCOMPARE(empty.rowCount(), 0);
        QStringList captions;
        for (int column = 0; column < empty.columnCount(); ++column)
            captions << empty.headerData(column, Qt::Horizontal).toString();
        QCOMPARE(captions, (QStringList{"#", "W", "w", "h", "sL", "sB", "0ffset", "bM0ffset", "len", "*"}));

        std::vector<std::vector<std::string>> rows{{"0001", "07", "5", "9", "01", "00", "1840005", "5", "09", "*"},
                                                   {"0002", "130", "12", "16", "00", "02", "1841000", "1000", "20",
                                                    std::string(1, '\0')}};
        GlyphListModel glyphs([&rows] { return static_cast<int>(rows.size()); },
                              [&rows](int row, int column) -> const std::string& { return rows[row][column - 1]; });
        QAbstractItemModelTester tester(&glyphs, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QCOMPARE(glyphs.rowCount(), 2);
        QCOMPARE(glyphs.cellText(0, 7), QStringLiteral("1840005"));
        QCOMPARE(glyphs.cellText(1, 2), QStringLiteral("130"));
        QCOMPARE(glyphs.cellText(1, 10), QString());
        rows.push_back(rows[0]);
        glyphs.reload();
        QCOMPARE(glyphs.rowCount(), 3);
    }
};

KORVATEK_TEST_CLASS(ModelsTest);

}  // namespace korvatek::gui::test

#include "models_test.moc"
