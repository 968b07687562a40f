#include "test_support.h"

#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QModelIndex>
#include <QPushButton>
#include <QSignalSpy>
#include <QUuid>

#include "patch_status_dialog.h"
#include "support/scripted_interface.h"
#include "app/workspace.h"
#include "demo/demo_flash.h"
#include "qsettings_store.h"
#include "desktop/freedesktop_association.h"

namespace korvatek::gui::test {

// The run's temporary home (HOME, XDG_CONFIG_HOME, XDG_DATA_HOME, TMP point into it).
static QString testRoot() { return qEnvironmentVariable("HOME"); }

QString freshFolder(const QString& name) {
    const QString path = testRoot() + QStringLiteral("/") + name + QStringLiteral("-") +
                         QUuid::createUuid().toString(QUuid::Id128).left(8);
    QDir().mkpath(path);
    return path;
}

QString demoFlashPath() {
    static const QString path = [] {
        const QString file = testRoot() + QStringLiteral("/demo.bin");
        const Bytes flash = firmware::makeDemoFlash();
        QFile out(file);
        if (!out.open(QIODevice::WriteOnly)) qFatal("cannot write the demonstration fullflash");
        out.write(reinterpret_cast<const char*>(flash.data()), static_cast<qint64>(flash.size()));
        return file;
    }();
    return path;
}

QString demoPictureGpf2(int row) {
    const QString target = freshFolder(QStringLiteral("gpf2")) + QStringLiteral("/picture %1.gpf2").arg(row);
    app::ScriptedInterface answers;
    app::Workspace ws(answers);
    ws.PathGiven = true;
    ws.CommandLinePath = demoFlashPath().toStdString();
    ws.mnu_FileOpen();
    ws.selectPicture(row);
    answers.saveFiles.push_back(target.toStdString());
    ws.mnuPopup_SaveGPF();
    if (!QFile::exists(target)) qFatal("the core did not write the GPF2 of a demonstration picture");
    return target;
}

std::unique_ptr<Form1> makeWindow(const QString& settingsIni) {
    const QString ini = settingsIni.isEmpty() ? freshFolder(QStringLiteral("settings")) + QStringLiteral("/Korvatek.ini")
                                              : settingsIni;
    const QString home = freshFolder(QStringLiteral("desktop"));
    auto associations = std::make_unique<settings::FreedesktopAssociationStore>(
        (home + QStringLiteral("/data")).toStdString(), (home + QStringLiteral("/config")).toStdString());
    return std::make_unique<Form1>(std::make_unique<QSettingsStore>(ini), std::move(associations));
}

QStringList changedRanges(const QSignalSpy& dataChanged) {
    QStringList ranges;
    for (const QList<QVariant>& signal : dataChanged) {
        const auto from = signal[0].value<QModelIndex>();
        const auto to = signal[1].value<QModelIndex>();
        ranges << QStringLiteral("%1-%2,%3-%4").arg(from.row()).arg(to.row()).arg(from.column()).arg(to.column());
    }
    return ranges;
}

ModalAnswerer::ModalAnswerer() {
    m_timer.setInterval(5);
    connect(&m_timer, &QTimer::timeout, this, &ModalAnswerer::answer);
    m_timer.start();
}

bool dropFiles(QWidget* target, const QStringList& files, QPoint at) {
    QMimeData mime;
    QList<QUrl> urls;
    for (const QString& f : files) urls << QUrl::fromLocalFile(f);
    mime.setUrls(urls);
    QDragEnterEvent enter(at, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(target, &enter);
    QDropEvent dropped(QPointF(at), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(target, &dropped);
    QCoreApplication::processEvents();
    return enter.isAccepted();
}

void ModalAnswerer::answer() {
    QWidget* modal = QApplication::activeModalWidget();
    if (modal == nullptr) return;
    if (auto* box = qobject_cast<QMessageBox*>(modal)) {
        texts << box->text();
        titles << box->windowTitle();
        QAbstractButton* button = box->button(okAnswer ? QMessageBox::Ok : QMessageBox::Cancel);
        if (button == nullptr) button = box->buttons().value(0);
        button->click();
    } else if (auto* files = qobject_cast<QFileDialog*>(modal)) {
        dialogTitles << files->windowTitle();
        dialogFilters << files->nameFilters().join(QStringLiteral(";;"));
        if (filesToChoose.isEmpty()) {
            files->reject();
        } else {
            files->selectFile(filesToChoose.takeFirst());
            static_cast<QDialog*>(files)->accept();  // QFileDialog::accept checks the name
        }
    } else if (auto* status = qobject_cast<PatchStatusDialog*>(modal)) {
        titles << status->windowTitle();
        auto* write = status->findChild<QPushButton*>(QStringLiteral("write"));
        if (okAnswer && write != nullptr) {
            write->click();
        } else {
            status->reject();
        }
    } else if (auto* input = qobject_cast<QInputDialog*>(modal)) {
        titles << input->windowTitle();
        if (okAnswer && !filesToChoose.isEmpty()) {
            input->setTextValue(filesToChoose.takeFirst());
            input->accept();
        } else {
            input->reject();
        }
    }
}

}  // namespace korvatek::gui::test

#include "test_classes.h"

namespace korvatek::gui::test {

std::map<QString, TestClassFactory>& testClassRegistry() {
    static std::map<QString, TestClassFactory> registry;
    return registry;
}

}  // namespace korvatek::gui::test
