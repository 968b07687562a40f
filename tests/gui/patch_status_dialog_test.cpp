// The patch status dialog: its model under Qt's tester, what a partly applied patch and a clean
// one show, the keys, colours that read in a light and a dark palette, and a screenshot.
#include <QAbstractItemModelTester>
#include <QDir>
#include <QHeaderView>
#include <QPushButton>
#include <QTableView>
#include <QTest>

#include "patch/vkp_status.h"
#include "patch_status_dialog.h"
#include "test_classes.h"

namespace korvatek::gui::test {

namespace {

using patch::LineState;

patch::PatchEdit edit(int line, std::uint64_t offset, Bytes oldBytes, Bytes newBytes) {
    return {line, offset, std::move(oldBytes), std::move(newBytes)};
}

edit::PatchReport reportOf(const std::string& path, std::vector<patch::PatchEdit> edits, ByteView image) {
    edit::PatchReport report;
    report.path = path;
    report.status = patch::statusOf(edits, image);
    report.check.parsed.edits = std::move(edits);
    return report;
}

edit::StatusReport statusOf(std::vector<edit::PatchReport> patches) {
    edit::StatusReport report;
    report.patches = std::move(patches);
    std::vector<const std::vector<patch::PatchEdit>*> edits;
    for (const edit::PatchReport& p : report.patches) edits.push_back(&p.check.parsed.edits);
    report.clashes = patch::clashesBetween(edits);
    return report;
}

// 0x10 and 0x30 hold their new bytes already, 0x20 its old one.
Bytes partlyPatchedImage() {
    Bytes image(0x100, 0x00);
    image[0x10] = 0xAA;
    image[0x30] = 0xCC;
    return image;
}

edit::StatusReport partlyApplied() {
    return statusOf({reportOf("/patches/part.vkp",
                              {edit(2, 0x10, {0x00}, {0xAA}), edit(3, 0x20, {0x00}, {0xBB}), edit(5, 0x30, {0x00}, {0xCC})},
                              partlyPatchedImage())});
}

QColor rowColour(const QAbstractItemModel& model, int row) {
    return model.index(row, 0).data(Qt::BackgroundRole).value<QColor>();
}

bool greenish(const QColor& c) { return c.green() > c.red() + 20 && c.green() > c.blue() + 20; }
bool reddish(const QColor& c) { return c.red() > c.green() + 20 && c.red() > c.blue() + 20; }

}  // namespace

class PatchStatusDialogTest : public QObject {
    Q_OBJECT
private slots:
    void modelListsEveryLineOfEveryPatchInOrder() {
        const Bytes image = partlyPatchedImage();
        // A patch without lines between two others takes no row.
        const edit::StatusReport report = statusOf(
            {reportOf("a.vkp", {edit(1, 0x10, {0x00}, {0xAA}), edit(2, 0xFE, {0x00, 0x00, 0x00}, {1, 2, 3})}, image),
             reportOf("empty.vkp", {}, image), reportOf("c.vkp", {edit(7, 0x20, {0x11}, {0x22})}, image)});
        const settings::MessageTable messages;
        PatchStatusModel model(report, messages, QPalette());
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QCOMPARE(model.rowCount(), 3);
        QCOMPARE(model.columnCount(), 5);
        const auto row = [&model](int r) {
            QStringList cells;
            for (int c = 0; c < model.columnCount(); ++c) cells << model.index(r, c).data().toString();
            return cells.join('|');
        };
        QCOMPARE(row(0), QStringLiteral("a.vkp|1|0x10|1|applied"));
        QCOMPARE(row(1), QStringLiteral("a.vkp|2|0xFE|3|outside the fullflash"));
        QCOMPARE(row(2), QStringLiteral("c.vkp|7|0x20|1|conflicting"));
        QCOMPARE(model.patchOf(2), std::size_t{2});
        QCOMPARE(model.widestTexts(PatchStatusModel::AddressColumn), QStringList{"0xFE"});
    }

    void aPatchAppliedInPiecesShowsItsCountsStatesAndColoursAndNoWriteButton() {
        const settings::MessageTable messages;
        PatchStatusDialog dialog(partlyApplied(), messages, false);
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Patch status"));
        QCOMPARE(dialog.summaryText(),
                 QStringLiteral("part.vkp: partly applied (2 applied, 1 not applied, 0 conflicting, 0 outside the fullflash, 0 changing nothing)"));
        const QAbstractItemModel& shown = *dialog.findChild<QTableView*>("lines")->model();
        QCOMPARE(shown.rowCount(), 3);
        QCOMPARE(shown.index(0, PatchStatusModel::StateColumn).data().toString(), QStringLiteral("applied"));
        QCOMPARE(shown.index(1, PatchStatusModel::StateColumn).data().toString(), QStringLiteral("not applied"));
        QVERIFY(greenish(rowColour(shown, 0)) && greenish(rowColour(shown, 2)));
        QVERIFY(!shown.index(1, 0).data(Qt::BackgroundRole).isValid());  // not applied keeps the base
        QCOMPARE(dialog.findChild<QPushButton*>("write"), nullptr);
        auto* close = dialog.findChild<QPushButton*>("close");
        QVERIFY(close->isDefault());
        QCOMPARE(close->text(), QStringLiteral("Close"));
        QCOMPARE(dialog.findChild<QTableView*>("lines")->accessibleDescription(),
                 QString::fromStdString(messages.text(settings::MessageKey::MsgStatusTableDescription)));

        // A header click sorts; the state column puts the line not applied after the applied ones.
        auto* table = dialog.findChild<QTableView*>("lines");
        table->sortByColumn(PatchStatusModel::StateColumn, Qt::DescendingOrder);
        QCOMPARE(shown.index(0, PatchStatusModel::LineColumn).data().toString(), QStringLiteral("3"));
    }

    void aCleanPatchOffersTheWriteButtonByDefaultAndTheKeysWork() {
        Bytes image(0x100, 0x00);
        const edit::StatusReport report = statusOf({reportOf("clean.vkp", {edit(1, 0x40, {0x00}, {0x01})}, image)});
        settings::MessageTable messages;
        messages.apply(1);
        for (const int key : {Qt::Key_Return, Qt::Key_Escape}) {
            PatchStatusDialog dialog(report, messages, true);
            QCOMPARE(dialog.windowTitle(), QString::fromStdString(messages.text(settings::MessageKey::MsgStatusTitle)));
            auto* write = dialog.findChild<QPushButton*>("write");
            QVERIFY(write != nullptr && write->isDefault());
            QVERIFY(!write->accessibleDescription().isEmpty());
            dialog.show();
            QVERIFY(QTest::qWaitForWindowExposed(&dialog));
            auto* table = dialog.findChild<QTableView*>("lines");
            QCOMPARE(QApplication::focusWidget(), table);  // the arrows move through the lines at once
            QTest::keyClick(table, static_cast<Qt::Key>(key));
            QCOMPARE(dialog.result(), key == Qt::Key_Return ? QDialog::Accepted : QDialog::Rejected);
        }
    }

    void stateColoursReadInALightAndADarkPalette() {
        QPalette light;
        light.setColor(QPalette::Base, Qt::white);
        light.setColor(QPalette::Text, Qt::black);
        QPalette dark;
        dark.setColor(QPalette::Base, QColor(30, 30, 30));
        dark.setColor(QPalette::Text, QColor(235, 235, 235));
        for (const QPalette& palette : {light, dark}) {
            const QColor base = palette.color(QPalette::Base);
            const QColor applied = PatchStatusModel::stateBackground(LineState::Applied, palette);
            const QColor conflicting = PatchStatusModel::stateBackground(LineState::Conflicting, palette);
            const QColor outside = PatchStatusModel::stateBackground(LineState::Outside, palette);
            QVERIFY(!PatchStatusModel::stateBackground(LineState::NotApplied, palette).isValid());
            QVERIFY(greenish(applied) && reddish(conflicting));
            QVERIFY(outside != base && outside.saturation() == 0);
            for (const QColor& colour : {applied, conflicting, outside})
                QVERIFY2(std::abs(colour.lightness() - palette.color(QPalette::Text).lightness()) > 110,
                         qPrintable(colour.name()));
        }
    }

    void screenshotOfTwoPatchesThatClash() {
        Bytes image(0x1330000, 0xFF);
        std::vector<patch::PatchEdit> fonts;
        for (int i = 0; i < 40; ++i) {
            const std::uint64_t at = 0x1320000 + 0x10 * static_cast<std::uint64_t>(i);
            fonts.push_back(edit(i + 3, at, {0xFF, 0xFF}, {static_cast<std::uint8_t>(at), 0x5A}));
        }
        for (std::size_t applied : {0u, 1u, 4u}) {  // the fullflash holds these lines' new bytes
            image[fonts[applied].offset] = fonts[applied].newBytes[0];
            image[fonts[applied].offset + 1] = fonts[applied].newBytes[1];
        }
        fonts[2].oldBytes = {0x12, 0x34};  // neither old nor new: conflicting
        fonts[5].offset = 0x1330000;       // beyond the end
        std::vector<patch::PatchEdit> icons{edit(1, 0x1320010, {0xFF, 0xFF}, {0x77, 0x77}),
                                            edit(2, 0x1322000, {0xFF}, {0x01})};
        const edit::StatusReport report = statusOf(
            {reportOf("/patches/fonts_E71_v42.vkp", fonts, image), reportOf("/patches/icons.vkp", icons, image)});
        const settings::MessageTable messages;
        PatchStatusDialog dialog(report, messages, false);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        auto* table = dialog.findChild<QTableView*>("lines");
        // Every column wide enough for its widest cell, none cut off.
        for (int column = 0; column < PatchStatusModel::ColumnCount - 1; ++column)
            for (const QString& cell : dialog.model().widestTexts(column))
                QVERIFY(table->columnWidth(column) > table->fontMetrics().horizontalAdvance(cell));
        QVERIFY(QDir().mkpath(KORVATEK_SCREENSHOT_DIR));
        const QString path = QStringLiteral(KORVATEK_SCREENSHOT_DIR "/patch-status.png");
        QVERIFY2(dialog.grab().save(path), qPrintable(path));
    }
};

KORVATEK_TEST_CLASS(PatchStatusDialogTest);

}  // namespace korvatek::gui::test

#include "patch_status_dialog_test.moc"
