#pragma once
// The Cancel beside the progress bar. A batch asks between two items whether the person
// cancelled; at its first question the button appears and takes the focus, and from then
// until the command ends the window takes no other input: the lists, menus and shortcuts
// cannot start a second command meanwhile, while the window keeps painting. Esc, a click or
// Space on the button, or closing the window ask the batch to stop.

#include <QObject>
#include <QPointer>

class QPushButton;
class QWidget;

namespace korvatek::gui {

class BatchCancel : public QObject {
    Q_OBJECT
public:
    BatchCancel(QWidget* window, QPushButton* button);

    // The batch's first question: shows the button and holds back the window's input.
    void begin();
    // The command ended: hides the button, gives the focus back and lets input through.
    void end();
    bool active() const { return m_active; }
    bool requested() const { return m_requested; }
    void request();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool held(QObject* watched, QEvent* event);

    QWidget* m_window;
    QPushButton* m_button;
    QPointer<QWidget> m_focus;   // where the focus was when the batch began
    bool m_active = false;
    bool m_requested = false;
};

}  // namespace korvatek::gui
