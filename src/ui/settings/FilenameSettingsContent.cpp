#include "ui/settings/FilenameSettingsContent.h"

#include "ui/settings/CharacterToggle.h"
#include "ui/settings/ElidedLabel.h"
#include "ui/settings/FilenameExampleRow.h"
#include "ui/settings/FilenamePreview.h"
#include "ui/settings/SegmentedSelector.h"
#include "ui/settings/SettingsCard.h"
#include "ui/settings/SettingsDivider.h"
#include "ui/settings/SettingsDraft.h"
#include "ui/settings/SettingsLabel.h"
#include "ui/settings/SettingsSlider.h"
#include "ui/settings/SettingsToggle.h"
#include "ui/settings/StoredTextList.h"
#include "ui/settings/StyledTextField.h"
#include "ui/settings/SymbolView.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QSignalBlocker>

using namespace Qt::StringLiterals;
using SettingsTheme::Tint;
using Kind = SettingsLabel::Kind;
using RandomFilenameConfig = UploadSettings::RandomFilenameConfig;

namespace {

constexpr int kShortestLength = 4;
constexpr int kGreatestLength = 32;
constexpr int kCaptionSpacing = 4;

/// A caption over a control, as a part of a card.
QVBoxLayout *captioned(const QString &caption, QWidget *card)
{
    auto *column = new QVBoxLayout;
    column->setSpacing(kCaptionSpacing);
    column->addWidget(new SettingsLabel(Kind::Caption, caption, card));
    return column;
}

} // namespace

FilenameSettingsContent::FilenameSettingsContent(SettingsDraft &draft, const Clock &clock,
                                                 SecureRandom &random, QWidget *parent)
    : SettingsPage(parent), m_draft(draft), m_clock(clock), m_random(random)
{
    buildStyle();
    buildRandomOptions();
    buildPreview();
    buildExamples();
    connectControls();
    connect(&draft, &SettingsDraft::changed, this, &FilenameSettingsContent::render);
    render();
}

void FilenameSettingsContent::buildStyle()
{
    SettingsCard *card = addCard(u"Naming Style"_s, u"textformat"_s);
    QVBoxLayout *column = captioned(u"Style"_s, card);
    m_style =
        new SegmentedSelector(u"Style"_s, storedTextList<UploadSettings::FilenameStyle>(), card);
    const QStringList names = {u"style.original"_s, u"style.random"_s, u"style.timestamp"_s};
    for (int index = 0; index < static_cast<int>(names.size()); ++index)
        m_style->button(index)->setObjectName(names.at(index));
    column->addWidget(m_style);
    card->body()->addLayout(column);
    m_addDate = new SettingsToggle(u"Include date in filename"_s, card);
    m_addDate->setObjectName(u"addDateToFilename"_s);
    card->body()->addWidget(m_addDate);
}

void FilenameSettingsContent::buildRandomOptions()
{
    m_randomOptions = addCard(u"Random Options"_s, u"dice"_s);
    m_randomOptions->setObjectName(u"randomOptions"_s);

    auto *row = new QHBoxLayout;
    auto *label = new SettingsLabel(Kind::Text, u"Length"_s, m_randomOptions);
    m_lengthText = new SettingsLabel(Kind::Text, QString(), m_randomOptions);
    m_lengthText->setObjectName(u"lengthText"_s);
    m_lengthText->setForegroundRole(QPalette::PlaceholderText);
    m_length = new SettingsSlider(kShortestLength, kGreatestLength, m_randomOptions);
    m_length->setObjectName(u"length"_s);
    m_length->setAccessibleName(label->text());
    label->setBuddy(m_length);
    row->addWidget(label);
    row->addStretch();
    row->addWidget(m_lengthText);
    m_randomOptions->body()->addLayout(row);
    m_randomOptions->body()->addWidget(m_length);

    buildCharacters();

    QVBoxLayout *column = captioned(u"Character Pool"_s, m_randomOptions);
    m_pool = new ElidedLabel(m_randomOptions);
    m_pool->setObjectName(u"characterPool"_s);
    m_pool->setFont(SettingsTheme::font(12));
    column->addWidget(m_pool);
    m_randomOptions->body()->addLayout(column);
}

void FilenameSettingsContent::buildCharacters()
{
    const auto makeToggle = [this](const QString &label, const QString &name,
                                   const QString &objectName) {
        auto *toggle = new CharacterToggle(label, name, m_randomOptions);
        toggle->setObjectName(objectName);
        return toggle;
    };
    m_useLowercase = makeToggle(u"abc"_s, u"Lower-case letters, abc"_s, u"useLowercase"_s);
    m_useUppercase = makeToggle(u"ABC"_s, u"Upper-case letters, ABC"_s, u"useUppercase"_s);
    m_useNumbers = makeToggle(u"123"_s, u"Digits, 123"_s, u"useNumbers"_s);
    m_useSymbols = makeToggle(u"#@$"_s, u"Symbols, #@$"_s, u"useSymbols"_s);
    QVBoxLayout *column = captioned(u"Characters"_s, m_randomOptions);
    auto *row = new QHBoxLayout;
    row->setSpacing(8);
    for (CharacterToggle *toggle : {m_useLowercase, m_useUppercase, m_useNumbers, m_useSymbols})
        row->addWidget(toggle);
    column->addLayout(row);
    m_randomOptions->body()->addLayout(column);

    m_customSymbols =
        new StyledTextField(u"Custom Symbols"_s, StyledTextField::Echo::Normal, m_randomOptions);
    m_customSymbols->field()->setObjectName(u"customSymbols"_s);
    m_customSymbols->setHint(u"Characters to include when symbols are enabled"_s);
    m_randomOptions->body()->addWidget(m_customSymbols);
}

void FilenameSettingsContent::buildPreview()
{
    SettingsCard *card = addCard(u"Preview"_s, u"eye"_s);
    auto *row = new QHBoxLayout;
    row->setSpacing(8);
    m_preview = new ElidedLabel(card);
    m_preview->setObjectName(u"preview"_s);
    m_preview->setFont(SettingsTheme::font(12, QFont::Medium));
    row->addWidget(new SymbolView(u"doc.fill"_s, 14, Tint::Accent, card));
    row->addWidget(m_preview, 1);
    card->body()->addLayout(row);
}

void FilenameSettingsContent::buildExamples()
{
    SettingsCard *card = addCard(u"Examples"_s, u"list.bullet"_s);
    const auto addRow = [card](const QString &style, const QString &example,
                               const QString &objectName) {
        auto *row = new FilenameExampleRow(style, example, card);
        row->setObjectName(objectName);
        card->body()->addWidget(row);
        return row;
    };
    addRow(u"Original"_s, u"Screenshot 2025-12-01.png"_s, u"example.original"_s);
    card->body()->addWidget(new SettingsDivider(card));
    m_randomExample = addRow(u"Random"_s, QString(), u"example.random"_s);
    card->body()->addWidget(new SettingsDivider(card));
    addRow(u"Timestamp"_s, u"1733085116.png"_s, u"example.timestamp"_s);
}

void FilenameSettingsContent::connectControls()
{
    const auto edits = [this](auto member) {
        return [this, member](const auto &value) {
            m_draft.edit(
                [&](UploadSettings &settings) { settings.randomFilenameConfig.*member = value; });
        };
    };
    connect(m_style, &SegmentedSelector::selected, this, [this](int index) {
        m_draft.edit([index](UploadSettings &settings) {
            settings.filenameStyle = caseAt<UploadSettings::FilenameStyle>(index);
        });
    });
    connect(m_addDate, &SettingsToggle::toggled, this, [this](bool isOn) {
        m_draft.edit([isOn](UploadSettings &settings) { settings.addDateToFilename = isOn; });
    });
    connect(m_length, &SettingsSlider::valueChanged, this, edits(&RandomFilenameConfig::length));
    connect(m_useLowercase, &CharacterToggle::toggled, this,
            edits(&RandomFilenameConfig::useLowercase));
    connect(m_useUppercase, &CharacterToggle::toggled, this,
            edits(&RandomFilenameConfig::useUppercase));
    connect(m_useNumbers, &CharacterToggle::toggled, this,
            edits(&RandomFilenameConfig::useNumbers));
    connect(m_useSymbols, &CharacterToggle::toggled, this,
            edits(&RandomFilenameConfig::useSymbols));
    connect(m_customSymbols, &StyledTextField::edited, this,
            edits(&RandomFilenameConfig::customSymbols));
}

void FilenameSettingsContent::render()
{
    const UploadSettings &settings = m_draft.settings();
    const RandomFilenameConfig &config = settings.randomFilenameConfig;
    m_style->setSelection(indexOf(settings.filenameStyle));
    m_addDate->setChecked(settings.addDateToFilename);

    m_randomOptions->setVisible(settings.filenameStyle == UploadSettings::FilenameStyle::random);
    m_lengthText->setText(u"%1 characters"_s.arg(config.length));
    {
        // A stored length beyond the slider's ends is shown at the end, and stays as it is.
        const QSignalBlocker blocker(m_length);
        m_length->setValue(static_cast<int>(
            std::clamp<std::int64_t>(config.length, kShortestLength, kGreatestLength)));
    }
    m_useLowercase->setChecked(config.useLowercase);
    m_useUppercase->setChecked(config.useUppercase);
    m_useNumbers->setChecked(config.useNumbers);
    m_useSymbols->setChecked(config.useSymbols);
    m_customSymbols->setVisible(config.useSymbols);
    m_customSymbols->setText(config.customSymbols);
    m_pool->setText(FilenamePreview::shownPool(config.characterPool()));

    m_preview->setText(FilenamePreview::name(settings, m_clock, m_random));
    m_randomExample->setExample(FilenamePreview::randomExample(config, m_random));
}
