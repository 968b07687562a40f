#include "qt_user_interface.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QMessageBox>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>

#include "application.h"
#include "batch_cancel.h"
#include "patch_status_dialog.h"
#include "qt_text.h"

namespace korvatek::gui {

QtUserInterface::QtUserInterface(QWidget* parent) : m_parent(parent) {}

QString QtUserInterface::boxTitle(const std::string& title) {
    return title.empty() ? QString::fromLatin1(kApplicationName) : toQString(title);
}

void QtUserInterface::showMessage(const std::string& text, const std::string& title) {
    if (m_collected) {
        m_collected->push_back(title.empty() ? text : text + " " + title);
        return;
    }
    QMessageBox box(QMessageBox::Information, boxTitle(title), toDisplayText(text), QMessageBox::Ok, m_parent);
    box.exec();
}

bool QtUserInterface::askOkCancel(const std::string& text) {
    QMessageBox box(QMessageBox::Question, boxTitle({}), toDisplayText(text), QMessageBox::Ok | QMessageBox::Cancel,
                    m_parent);
    box.setDefaultButton(QMessageBox::Ok);
    return box.exec() == QMessageBox::Ok;
}

QString QtUserInterface::qtNameFilters(const std::string& filter) {
    const QStringList parts = toQString(filter).split(QLatin1Char('|'));
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString description = parts[i].trimmed();
        // A description that already lists its patterns gets them again in Qt's form: Qt takes
        // the patterns from the parentheses, separated by blanks only.
        description.remove(QRegularExpression(QStringLiteral("\\s*\\([^()]*\\)\\s*$")));
        QStringList patterns = parts[i + 1].split(QLatin1Char(';'), Qt::SkipEmptyParts);
        for (QString& pattern : patterns) pattern = pattern.trimmed();
        patterns.removeAll(QString());
        filters << QStringLiteral("%1 (%2)").arg(description, patterns.join(QLatin1Char(' ')));
    }
    return filters.join(QStringLiteral(";;"));
}

QString QtUserInterface::defaultSuffix(const std::string& filter) {
    const QStringList parts = toQString(filter).split(QLatin1Char('|'));
    if (parts.size() < 2) return {};
    const QString first = parts[1].split(QLatin1Char(';')).first().trimmed();
    const qsizetype dot = first.lastIndexOf(QLatin1Char('.'));
    const QString suffix = dot < 0 ? QString() : first.mid(dot + 1);
    return suffix.contains(QLatin1Char('*')) || suffix.contains(QLatin1Char('?')) ? QString() : suffix;
}

void QtUserInterface::remember(const QString& path, bool isFolder) {
    m_lastFolder = isFolder ? path : QFileInfo(path).absolutePath();
}

std::optional<std::vector<std::string>> QtUserInterface::runFileDialog(const app::FileDialogRequest& request,
                                                                       FileMode mode) {
    const bool save = mode == FileMode::Save;
    QFileDialog dialog(m_parent, toQString(request.title), m_lastFolder);
    dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(save                             ? QFileDialog::AnyFile
                       : mode == FileMode::OpenSeveral ? QFileDialog::ExistingFiles
                                                       : QFileDialog::ExistingFile);
    const QString filters = qtNameFilters(request.filter);
    if (!filters.isEmpty()) dialog.setNameFilters(filters.split(QStringLiteral(";;")));
    if (save) dialog.setDefaultSuffix(defaultSuffix(request.filter));
    if (!request.fileName.empty()) dialog.selectFile(toQString(request.fileName));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
    std::vector<std::string> chosen;
    for (const QString& file : dialog.selectedFiles()) chosen.push_back(toStdString(QDir::toNativeSeparators(file)));
    remember(QDir::toNativeSeparators(dialog.selectedFiles().first()), false);
    return chosen;
}

std::optional<std::string> QtUserInterface::chooseOpenFile(const app::FileDialogRequest& request) {
    auto chosen = runFileDialog(request, FileMode::Open);
    if (!chosen) return std::nullopt;
    return chosen->front();
}

std::optional<std::string> QtUserInterface::chooseSaveFile(const app::FileDialogRequest& request) {
    auto chosen = runFileDialog(request, FileMode::Save);
    if (!chosen) return std::nullopt;
    return chosen->front();
}

std::optional<std::vector<std::string>> QtUserInterface::chooseOpenFiles(const app::FileDialogRequest& request) {
    return runFileDialog(request, FileMode::OpenSeveral);
}

bool QtUserInterface::showPatchStatus(const edit::StatusReport& report, bool canWrite) {
    PatchStatusDialog dialog(report, m_messages != nullptr ? *m_messages : m_ownMessages, canWrite, m_parent);
    return dialog.exec() == QDialog::Accepted && canWrite;
}

std::optional<std::string> QtUserInterface::chooseFolder(const std::string& title) {
    const QString folder = QFileDialog::getExistingDirectory(m_parent, toQString(title), m_lastFolder);
    if (folder.isEmpty()) return std::nullopt;
    remember(folder, true);
    return toStdString(QDir::toNativeSeparators(folder));
}

std::optional<std::string> QtUserInterface::inputText(const std::string& prompt) {
    bool accepted = false;
    const QString answer =
        QInputDialog::getText(m_parent, boxTitle({}), toDisplayText(prompt), QLineEdit::Normal, QString(), &accepted);
    if (!accepted) return std::nullopt;
    return toStdString(answer);
}

void QtUserInterface::setProgress(double percent) {
    if (m_progressBar) m_progressBar->setValue(static_cast<int>(std::lround(std::clamp(percent, 0.0, 100.0))));
    // Paint, but take no input: a command runs to its end before the next one starts. During a
    // batch the Cancel holds back every input of the window but its own, so input may flow.
    if (!m_sinceRepaint.isValid() || m_sinceRepaint.elapsed() >= kRepaintIntervalMs || percent >= 100.0) {
        QCoreApplication::processEvents(m_cancel && m_cancel->active() ? QEventLoop::AllEvents
                                                                       : QEventLoop::ExcludeUserInputEvents);
        m_sinceRepaint.restart();
    }
}

bool QtUserInterface::cancelRequested() {
    if (!m_cancel) return false;
    m_cancel->begin();
    return m_cancel->requested();
}

}  // namespace korvatek::gui
