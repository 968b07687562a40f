#pragma once
// frmOptions: the interface language (Option1 to Option5), the two message options (Check3,
// Check4) and the file associations (Check1 ".gpf", Check2 ".gpf2"). The settings are read
// again each time the dialog starts; Apply and OK write them, Defaults restores them.

#include <QDialog>

#include <array>
#include <string>

#include "app/workspace.h"
#include "desktop/file_association.h"
#include "app/settings_store.h"

class QAbstractButton;
class QCheckBox;
class QPushButton;
class QRadioButton;
class QTabWidget;

namespace korvatek::gui {

class OptionsDialog : public QDialog {
    Q_OBJECT
public:
    OptionsDialog(app::Workspace& workspace, settings::SettingsStore& store, settings::AssociationStore& associations,
                  std::string executablePath, QWidget* parent = nullptr);

    void cmdApply_Click();
    void cmdOK_Click();
    void cmdDefaults_Click();

    // The language of the checked option button, 0 when none is checked.
    int selectedLanguage() const;

signals:
    // A language routine ran: the main window takes its captions again.
    void languageApplied();

private:
    void buildControls();
    void dialogStart();  // what the dialog does each time it starts
    void retranslate();
    void markChanged();

    app::Workspace& m_ws;
    settings::SettingsStore& m_store;
    settings::AssociationStore& m_associations;
    std::string m_executablePath;
    bool m_starting = false;

    QTabWidget* m_tabs = nullptr;
    std::array<QRadioButton*, 5> m_languages{};
    QCheckBox* m_check1 = nullptr;
    QCheckBox* m_check2 = nullptr;
    QCheckBox* m_check3 = nullptr;
    QCheckBox* m_check4 = nullptr;
    QPushButton* m_ok = nullptr;
    QPushButton* m_cancel = nullptr;
    QPushButton* m_apply = nullptr;
    QPushButton* m_defaults = nullptr;
};

}  // namespace korvatek::gui
