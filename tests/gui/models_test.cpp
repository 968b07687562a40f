// The list models over the core's records, checked by Qt's model tester and cell by cell.
#include <QAbstractItemModelTester>
#include <QTest>

#include "support/scripted_interface.h"
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
                         QString::fromStdString(firmware::pictureCellText(ws.ListView1[row], column)));
            // An untouched row has no mark.
            QCOMPARE(model.data(model.index(row, 7)).toString(), QString());
        }
        QCOMPARE(model.cellText(1700, 6), QStringLiteral("1B06908"));

        // A replacement mark changes one cell; the rows stay.
        ws.ListView1[3].replaced = true;
        model.refreshCells();
        QCOMPARE(model.data(model.index(3, 7)).toString(), QStringLiteral("*"));
    }

    void recordsEmptiedBeforeTheViewsAreToldReadAsNothing() {
        std::vector<firmware::PictureRecord> records(3);
        records[2].number = 2;
        PictureListModel model(records);
        QCOMPARE(model.rowCount(), 3);
        // A command empties the records and paints before the window reloads the model.
        records.clear();
        QCOMPARE(model.data(model.index(2, 0)).toString(), QString());
        QCOMPARE(model.cellText(2, 1), QString());
        model.refreshCells();
        QCOMPARE(model.rowCount(), 0);
    }

    void glyphListShowsTheChosenFontsRecords() {
        app::ScriptedInterface answers;
        app::Workspace ws(answers);
        GlyphListModel model(ws.ListView2);
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QCOMPARE(model.rowCount(), 0);
        QCOMPARE(model.columnCount(), 10);
        QCOMPARE(model.headerData(6, Qt::Horizontal).toString(), QStringLiteral("0ffset"));

        ws.PathGiven = true;
        ws.CommandLinePath = demoFlashPath().toStdString();
        ws.mnu_FileOpen();
        for (int font : {0, 1}) {
            ws.Ftype_Click(font);
            model.reload();
            QCOMPARE(model.rowCount(), static_cast<int>(ws.ListView2.size()));
            QVERIFY(model.rowCount() > 0);
            for (int row = 0; row < model.rowCount(); row += 7)
                for (int column = 1; column <= 9; ++column)
                    QCOMPARE(model.cellText(row, column), QString::fromStdString(fonts::glyphCellText(ws.ListView2[row], column)));
        }
    }
};

KORVATEK_TEST_CLASS(ModelsTest);

}  // namespace korvatek::gui::test

#include "models_test.moc"
