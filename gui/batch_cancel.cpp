#include "batch_cancel.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QPushButton>

namespace korvatek::gui {

BatchCancel::BatchCancel(QWidget* window, QPushButton* button) : QObject(window), m_window(window), m_button(button) {
    m_button->hide();
    connect(m_button, &QPushButton::clicked, this, &BatchCancel::request);
}

void BatchCancel::begin() {
    if (m_active) return;
    m_active = true;
    m_requested = false;
    m_focus = m_window->focusWidget();   // the window's own, also while a dialog is active
    m_button->setEnabled(true);
    m_button->show();
    m_button->setFocus(Qt::OtherFocusReason);
    qApp->installEventFilter(this);
}

void BatchCancel::end() {
    if (!m_active) return;
    qApp->removeEventFilter(this);
    m_active = false;
    m_requested = false;
    m_button->hide();
    // The focus goes back where the person left it, also when Cancel moved it on.
    if (m_focus) m_focus->setFocus(Qt::OtherFocusReason);
    m_focus = nullptr;
}

void BatchCancel::request() {
    if (!m_active) return;
    m_requested = true;
    m_button->setEnabled(false);   // asked once; the batch stops after the item under way
}

bool BatchCancel::eventFilter(QObject* watched, QEvent* event) {
    return m_active && held(watched, event);
}

bool BatchCancel::held(QObject* watched, QEvent* event) {
    switch (event->type()) {
        case QEvent::Shortcut:
            // The menus' shortcuts: no second command while the batch runs.
            return qobject_cast<QAction*>(watched) != nullptr;
        case QEvent::Close:
            if (watched != m_window) return false;
            request();
            event->ignore();
            return true;
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
        case QEvent::ShortcutOverride:
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::Wheel:
        case QEvent::ContextMenu:
        case QEvent::DragEnter:
        case QEvent::DragMove:
        case QEvent::Drop:
        case QEvent::TouchBegin:
        case QEvent::TouchUpdate:
        case QEvent::TouchEnd:
            break;
        default:
            return false;
    }
    auto* widget = qobject_cast<QWidget*>(watched);
    // A message box or dialog the batch opened answers as usual.
    if (widget == nullptr || widget->window() != m_window) return false;
    if (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Escape) {
            if (event->type() == QEvent::KeyPress) request();
            return true;
        }
        const bool pressesButton =
            key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Select;
        return !(widget == m_button && pressesButton);
    }
    return widget != m_button;
}

}  // namespace korvatek::gui
