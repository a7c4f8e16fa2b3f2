#include "ui/settings/ProtocolSelector.h"

#include "ui/settings/SegmentedSelector.h"
#include "ui/settings/SettingsLabel.h"
#include "ui/settings/StoredTextList.h"

#include <QAbstractButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

ProtocolSelector::ProtocolSelector(QWidget *parent)
    : QWidget(parent)
    , m_selector(
          new SegmentedSelector(u"Protocol"_s, storedTextList<UploadSettings::ServerType>(), this))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(new SettingsLabel(SettingsLabel::Kind::Caption, u"Protocol"_s, this));
    layout->addWidget(m_selector);
    const QStringList names = {u"protocol.ftp"_s, u"protocol.ftps"_s, u"protocol.sftp"_s};
    for (int index = 0; index < static_cast<int>(names.size()); ++index)
        m_selector->button(index)->setObjectName(names.at(index));
    connect(m_selector, &SegmentedSelector::selected, this,
            [this](int index) { Q_EMIT selected(caseAt<UploadSettings::ServerType>(index)); });
}

void ProtocolSelector::setSelection(UploadSettings::ServerType type)
{
    m_selector->setSelection(indexOf(type));
}
