#pragma once

#include "ui/settings/SettingsPage.h"

class CharacterToggle;
class Clock;
class ElidedLabel;
class FilenameExampleRow;
class QLabel;
class SecureRandom;
class SegmentedSelector;
class SettingsDraft;
class SettingsSlider;
class SettingsToggle;
class StyledTextField;

/// The page of the remote file names: the style, its options, and what comes of them.
class FilenameSettingsContent : public SettingsPage {
    Q_OBJECT

public:
    /// Nothing is owned; all must outlive the page.
    FilenameSettingsContent(SettingsDraft &draft, const Clock &clock, SecureRandom &random,
                            QWidget *parent = nullptr);

private:
    void buildStyle();
    void buildRandomOptions();
    void buildCharacters();
    void buildPreview();
    void buildExamples();
    void connectControls();
    void render();

    SettingsDraft &m_draft;
    const Clock &m_clock;
    SecureRandom &m_random;

    SegmentedSelector *m_style = nullptr;
    SettingsToggle *m_addDate = nullptr;
    SettingsCard *m_randomOptions = nullptr;
    QLabel *m_lengthText = nullptr;
    SettingsSlider *m_length = nullptr;
    CharacterToggle *m_useLowercase = nullptr;
    CharacterToggle *m_useUppercase = nullptr;
    CharacterToggle *m_useNumbers = nullptr;
    CharacterToggle *m_useSymbols = nullptr;
    StyledTextField *m_customSymbols = nullptr;
    ElidedLabel *m_pool = nullptr;
    ElidedLabel *m_preview = nullptr;
    FilenameExampleRow *m_randomExample = nullptr;
};
