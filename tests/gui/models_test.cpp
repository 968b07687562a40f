// The list models over the core's records: Qt's model tester while commands change the records,
// and what update() tells the views.
#include <QAbstractItemModelTester>
#include <QSignalSpy>
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
    void listsShowTheRecordsAsCommandsChangeThem() {
        app::ScriptedInterface answers;
        app::Workspace ws(answers);
        PictureListModel pictures(ws.ListView1);
        GlyphListModel glyphs(ws.ListView2);
        QAbstractItemModelTester pictureTester(&pictures, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QAbstractItemModelTester glyphTester(&glyphs, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QCOMPARE(pictures.columnCount(), 8);
        QCOMPARE(glyphs.columnCount(), 10);

        ws.PathGiven = true;
        ws.CommandLinePath = demoFlashPath().toStdString();
        ws.mnu_FileOpen();
        QVERIFY(pictures.update());
        QVERIFY(!glyphs.update());  // no font chosen yet
        QCOMPARE(pictures.rowCount(), 1701);
        for (int row = 0; row < pictures.rowCount(); ++row)
            for (int column = 1; column <= 8; ++column)
                QCOMPARE(pictures.data(pictures.index(row, column - 1)).toString(),
                         QString::fromStdString(firmware::pictureCellText(ws.ListView1[row], column)));
        QCOMPARE(pictures.cellText(1700, 6), QStringLiteral("1B06908"));

        for (int font : {0, 1}) {
            ws.Ftype_Click(font);
            QVERIFY(glyphs.update());
            QCOMPARE(glyphs.rowCount(), static_cast<int>(ws.ListView2.size()));
            for (int row = 0; row < glyphs.rowCount(); row += 7)
                for (int column = 1; column <= 10; ++column)
                    QCOMPARE(glyphs.cellText(row, column),
                             QString::fromStdString(fonts::glyphCellText(ws.ListView2[row], column)));
        }
    }

    void updateTellsTheViewsOnlyWhatChanged() {
        std::vector<firmware::PictureRecord> records(6);
        for (int row = 0; row < 6; ++row) records[row].number = row;
        PictureListModel model(records);
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
        QSignalSpy reset(&model, &QAbstractItemModel::modelReset);

        QVERIFY(!model.update());
        QVERIFY(changed.isEmpty() && reset.isEmpty());

        // Marks: the mark cells of each run of neighbouring rows, nothing else.
        records[1].replaced = records[3].replaced = records[4].replaced = true;
        QVERIFY(!model.update());
        QCOMPARE(changedRanges(changed), (QStringList{"1-1,7-7", "3-4,7-7"}));
        QCOMPARE(model.cellText(4, 8), QStringLiteral("*"));
        QCOMPARE(reset.count(), 0);

        // Any other cell, or another length: the list was read anew.
        records[2].width = 9;
        QVERIFY(model.update());
        records.pop_back();
        QVERIFY(model.update());
        QCOMPARE(model.rowCount(), 5);

        // While a command empties the records the views see what they were last told.
        records.clear();
        QCOMPARE(model.rowCount(), 5);
        QCOMPARE(model.cellText(2, 3), QStringLiteral("9"));
        QVERIFY(model.update());
        QCOMPARE(model.rowCount(), 0);
        QCOMPARE(reset.count(), 3);
        QCOMPARE(changed.count(), 2);
    }
};

KORVATEK_TEST_CLASS(ModelsTest);

}  // namespace korvatek::gui::test

#include "models_test.moc"
