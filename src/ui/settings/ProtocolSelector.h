#pragma once

#include "settings/UploadSettings.h"

#include <QWidget>

class SegmentedSelector;

/// The choice of the transfer protocol, under its caption.
class ProtocolSelector : public QWidget {
    Q_OBJECT

public:
    explicit ProtocolSelector(QWidget *parent = nullptr);

    void setSelection(UploadSettings::ServerType type);

Q_SIGNALS:
    /// The user has selected that protocol.
    void selected(UploadSettings::ServerType type);

private:
    SegmentedSelector *m_selector;
};
