#pragma once
// What the window tests share: the demonstration fullflash, a window with its settings and
// associations kept under the run's temporary home, a helper that answers modal boxes, and the
// cells a model said had changed.

#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <memory>

#include "form1.h"

class QSignalSpy;

namespace korvatek::gui::test {

// An empty folder under the run's temporary home, made anew on each call.
QString freshFolder(const QString& name);
// The demonstration fullflash, written once per run.
QString demoFlashPath();
// A GPF2 of picture `row` of the demonstration fullflash, written by the core's own save.
QString demoPictureGpf2(int row);

// A window whose settings live in `settingsIni` (a fresh file when empty) and whose
// associations live under the run's home.
std::unique_ptr<Form1> makeWindow(const QString& settingsIni = {});

// Files dropped on `target` at `at` as the desktop drops them (file URLs in QMimeData: a drag
// entering, then the drop); true when the target took the drag.
bool dropFiles(QWidget* target, const QStringList& files, QPoint at);

// The ranges of the dataChanged signals a spy caught, each as "rows first-last,columns first-last".
QStringList changedRanges(const QSignalSpy& dataChanged);

// While it lives, every modal box that opens is answered: message boxes are recorded and
// answered OK (or Cancel when okAnswer is false); file dialogs get the next path of
// `filesToChoose`, or are cancelled when there is none; the patch status dialog writes when it
// offers that and okAnswer is true, and is closed otherwise.
class ModalAnswerer : public QObject {
    Q_OBJECT
public:
    ModalAnswerer();
    QStringList texts;          // texts of the message boxes, in order
    QStringList titles;         // their window titles
    QStringList dialogTitles;   // titles of the file and folder dialogs
    QStringList dialogFilters;  // name filters of the file dialogs, joined by ";;"
    QStringList filesToChoose;
    bool okAnswer = true;

private:
    void answer();
    QTimer m_timer;
};

}  // namespace korvatek::gui::test
