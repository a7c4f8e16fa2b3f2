#pragma once

#include "ui/settings/SettingsPage.h"
#include "ui/settings/ShortcutRecorder.h"

class ActionButton;
class KeyboardLayout;
class KeyboardShortcutView;
class QHBoxLayout;
class SettingsDraft;
class SettingsLabel;

/// The page of the shortcut: it shows it, records another from the keyboard or takes a suggested
/// one. Only the draft is changed. Recording ends when the page is hidden.
class ShortcutsSettingsContent : public SettingsPage {
    Q_OBJECT

public:
    /// Draft and layout are not owned and must outlive the page.
    ShortcutsSettingsContent(SettingsDraft &draft, const KeyboardLayout &layout,
                             QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void buildShortcut();
    void addButtons(QHBoxLayout &row, QWidget &parent);
    void buildQuickSelect();
    void buildTips();

    void render();
    void setRecording(bool isRecording);
    void saveShortcut();

    SettingsDraft &m_draft;
    ShortcutRecorder m_recorder;

    SettingsLabel *m_caption = nullptr;
    KeyboardShortcutView *m_shortcut = nullptr;
    SettingsLabel *m_placeholder = nullptr;
    ActionButton *m_record = nullptr;
    ActionButton *m_cancel = nullptr;
    ActionButton *m_apply = nullptr;
    QWidget *m_information = nullptr;
};
