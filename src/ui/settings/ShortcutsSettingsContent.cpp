#include "ui/settings/ShortcutsSettingsContent.h"

#include "ui/settings/ActionButton.h"
#include "ui/settings/KeyboardShortcutView.h"
#include "ui/settings/SettingsCard.h"
#include "ui/settings/SettingsDraft.h"
#include "ui/settings/SettingsLabel.h"
#include "ui/settings/ShortcutSuggestion.h"
#include "ui/settings/TipRow.h"

#include <QHBoxLayout>
#include <QHideEvent>
#include <QShowEvent>
#include <QSignalBlocker>

using namespace Qt::StringLiterals;
using KeyModifier = UploadSettings::KeyboardShortcut::KeyModifier;

ShortcutsSettingsContent::ShortcutsSettingsContent(SettingsDraft &draft,
                                                   const KeyboardLayout &layout, QWidget *parent)
    : SettingsPage(parent), m_draft(draft), m_recorder(layout)
{
    buildShortcut();
    buildQuickSelect();
    buildTips();
    connect(&draft, &SettingsDraft::changed, this, &ShortcutsSettingsContent::render);
    connect(&m_recorder, &ShortcutRecorder::changed, this, &ShortcutsSettingsContent::render);
    render();
}

void ShortcutsSettingsContent::buildShortcut()
{
    SettingsCard *card = addCard(u"Upload Shortcut"_s, u"command"_s);
    card->body()->addWidget(new SettingsLabel(
        SettingsLabel::Kind::Hint, u"Trigger upload from clipboard anywhere in macOS"_s, card));

    auto *row = new QHBoxLayout;
    row->setSpacing(8);
    m_caption = new SettingsLabel(SettingsLabel::Kind::Text, {}, card);
    m_caption->setObjectName(u"shortcutCaption"_s);
    m_shortcut = new KeyboardShortcutView(m_draft.settings().uploadClipboardShortcut, false, card);
    m_shortcut->setObjectName(u"shortcut"_s);
    m_placeholder = new SettingsLabel(SettingsLabel::Kind::Hint, u"Press keys..."_s, card);
    m_placeholder->setObjectName(u"shortcutPlaceholder"_s);
    m_placeholder->setWordWrap(false);
    // The row keeps its height, whatever it shows.
    m_placeholder->setMinimumHeight(m_shortcut->sizeHint().height());
    row->addWidget(m_caption);
    row->addWidget(m_shortcut);
    row->addWidget(m_placeholder);
    row->addStretch();
    addButtons(*row, *card);
    card->body()->addLayout(row);

    m_information = new TipRow(u"info.circle"_s, u"Press your desired key combination"_s, card);
    m_information->setObjectName(u"recordingInformation"_s);
    card->body()->addWidget(m_information);
}

void ShortcutsSettingsContent::addButtons(QHBoxLayout &row, QWidget &parent)
{
    const auto add = [&](ActionButton::Kind kind, const QString &symbol, const QString &text,
                         const QString &name, auto action) {
        auto *button = new ActionButton(kind, symbol, text, &parent);
        button->setObjectName(name);
        connect(button, &ActionButton::clicked, this, action);
        row.addWidget(button);
        return button;
    };
    m_record = add(ActionButton::Kind::Bordered, u"record.circle"_s, u"Record"_s, u"record"_s,
                   [this] { setRecording(true); });
    m_cancel = add(ActionButton::Kind::Bordered, {}, u"Cancel"_s, u"cancel"_s,
                   [this] { setRecording(false); });
    m_apply =
        add(ActionButton::Kind::Prominent, {}, u"Apply"_s, u"apply"_s, [this] { saveShortcut(); });
}

void ShortcutsSettingsContent::buildQuickSelect()
{
    struct Suggestion {
        QString keys;
        UploadSettings::KeyboardShortcut shortcut;
    };
    const Suggestion suggestions[] = {
        {u"⌘⇧U"_s, {u"u"_s, {KeyModifier::command, KeyModifier::shift}}},
        {u"⌘⌥U"_s, {u"u"_s, {KeyModifier::command, KeyModifier::option}}},
        {u"⌃⇧U"_s, {u"u"_s, {KeyModifier::control, KeyModifier::shift}}},
    };

    SettingsCard *card = addCard(u"Quick Select"_s, u"star"_s);
    auto *row = new QHBoxLayout;
    row->setSpacing(8);
    for (const Suggestion &suggestion : suggestions) {
        const auto choose = [this, shortcut = suggestion.shortcut] {
            m_draft.edit(
                [&](UploadSettings &settings) { settings.uploadClipboardShortcut = shortcut; });
        };
        auto *button = new ShortcutSuggestion(suggestion.keys, choose, card);
        button->setObjectName(u"suggestion."_s + suggestion.keys);
        row->addWidget(button);
    }
    row->addStretch();
    card->body()->addLayout(row);
}

void ShortcutsSettingsContent::buildTips()
{
    SettingsCard *card = addCard(u"Tips"_s, u"lightbulb"_s);
    const auto add = [card](const QString &icon, const QString &text) {
        card->body()->addWidget(new TipRow(icon, text, card));
    };
    add(u"command"_s, u"Include at least one modifier key"_s);
    add(u"exclamationmark.triangle"_s, u"Avoid system shortcuts (⌘Q, ⌘W)"_s);
    add(u"hand.raised"_s, u"Enable Accessibility in System Settings"_s);
}

void ShortcutsSettingsContent::render()
{
    const bool isRecording = m_recorder.isRecording();
    const auto &recorded = m_recorder.recorded();
    m_caption->setText(isRecording ? u"New"_s : u"Current"_s);
    if (!isRecording)
        m_shortcut->setShortcut(m_draft.settings().uploadClipboardShortcut);
    else if (recorded)
        m_shortcut->setShortcut(*recorded, true);
    m_shortcut->setVisible(!isRecording || recorded);
    m_placeholder->setVisible(isRecording && !recorded);
    m_record->setVisible(!isRecording);
    m_cancel->setVisible(isRecording);
    m_apply->setVisible(isRecording);
    m_apply->setEnabled(recorded.has_value());
    m_information->setVisible(isRecording);
}

void ShortcutsSettingsContent::setRecording(bool isRecording)
{
    // A button that is hidden would hand the focus on to some other control.
    const bool hadFocus = m_record->hasFocus() || m_cancel->hasFocus() || m_apply->hasFocus();
    m_recorder.setRecording(isRecording);
    if (hadFocus)
        (isRecording ? m_cancel : m_record)->setFocus();
}

void ShortcutsSettingsContent::saveShortcut()
{
    if (const auto recorded = m_recorder.recorded()) {
        m_draft.edit(
            [&](UploadSettings &settings) { settings.uploadClipboardShortcut = *recorded; });
        setRecording(false);
    }
}

void ShortcutsSettingsContent::showEvent(QShowEvent *event)
{
    if (!event->spontaneous())
        render();
    SettingsPage::showEvent(event);
}

void ShortcutsSettingsContent::hideEvent(QHideEvent *event)
{
    if (!event->spontaneous() && m_recorder.isRecording()) {
        // Drawn when the page is shown again: a window that is destroyed is hidden first, half
        // taken apart.
        const QSignalBlocker quiet(m_recorder);
        m_recorder.setRecording(false);
    }
    SettingsPage::hideEvent(event);
}
