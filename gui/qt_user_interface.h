#pragma once
// The window's side of the person-facing seam: Qt message boxes, questions, file and folder
// dialogs and input boxes, and the progress bar, which keeps the window painted during long
// walks; during a batch it also takes the Cancel beside the bar.

#include <QElapsedTimer>
#include <QPointer>
#include <QProgressBar>
#include <QString>

#include <string>
#include <vector>

#include "app/message_table.h"
#include "app/user_interface.h"

namespace korvatek::gui {

class BatchCancel;

class QtUserInterface : public app::UserInterface {
public:
    // Repaints during a walk at most this often.
    static constexpr qint64 kRepaintIntervalMs = 30;

    explicit QtUserInterface(QWidget* parent);

    void setProgressBar(QProgressBar* bar) { m_progressBar = bar; }
    // The window's Cancel; without it nothing is ever cancelled.
    void setBatchCancel(BatchCancel* cancel) { m_cancel = cancel; }
    // The table the patch status dialog takes its words from: the window's, in its language.
    void setMessages(const settings::MessageTable& messages) { m_messages = &messages; }

    // While a sink is set, messages are kept in it instead of shown: a batch tells them once,
    // at its end.
    void collectMessagesInto(std::vector<std::string>* sink) { m_collected = sink; }
    void showMessage(const std::string& text, const std::string& title) override;
    bool askOkCancel(const std::string& text) override;
    std::optional<std::string> chooseOpenFile(const app::FileDialogRequest& request) override;
    std::optional<std::string> chooseSaveFile(const app::FileDialogRequest& request) override;
    std::optional<std::vector<std::string>> chooseOpenFiles(const app::FileDialogRequest& request) override;
    std::optional<std::string> chooseFolder(const std::string& title) override;
    std::optional<std::string> inputText(const std::string& prompt) override;
    bool showPatchStatus(const edit::StatusReport& report, bool canWrite) override;
    void setProgress(double percent) override;
    bool cancelRequested() override;

    // "Desc (*.x)|*.x|Desc2|*.y" as Qt's "Desc (*.x);;Desc2 (*.y)": each description keeps its
    // words and gets the pair's patterns in parentheses.
    static QString qtNameFilters(const std::string& filter);
    // The extension of the filter's first pattern ("*.gpf2" gives "gpf2"), empty for "*.*".
    static QString defaultSuffix(const std::string& filter);
    static QString boxTitle(const std::string& title);

    // The folder the next dialog starts in: the one of the last file or folder chosen.
    const QString& lastFolder() const { return m_lastFolder; }

private:
    enum class FileMode { Open, OpenSeveral, Save };
    std::optional<std::vector<std::string>> runFileDialog(const app::FileDialogRequest& request, FileMode mode);
    void remember(const QString& path, bool isFolder);

    QWidget* m_parent;
    QPointer<QProgressBar> m_progressBar;
    BatchCancel* m_cancel = nullptr;  // a child of the window, which outlives this
    QElapsedTimer m_sinceRepaint;
    QString m_lastFolder;
    const settings::MessageTable* m_messages = nullptr;
    settings::MessageTable m_ownMessages;  // English, until the window gives its table
    std::vector<std::string>* m_collected = nullptr;
};

}  // namespace korvatek::gui
