#pragma once

#include <QWidget>

/// The settings window. It has no pages yet: the frame stands empty.
class SettingsView : public QWidget {
    Q_OBJECT

public:
    SettingsView();
};
