#include "platform/linux/MenuLabel.h"

#include "support/TestMain.h"

#include <QObject>

using namespace Qt::StringLiterals;

class MenuLabelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void ourOwnMenuEscapesAmpersandsOnly()
    {
        QCOMPARE(MenuLabel::forMenu(u"a_b & c&d.png"_s, {}), u"a_b && c&&d.png"_s);
    }

    void ourOwnMenuPutsTheCaptionIntoTheShortcutColumn()
    {
        QCOMPARE(MenuLabel::forMenu(u"Upload"_s, u"⌘U"_s), u"Upload\t⌘U"_s);
    }

    void panelLabelDoublesUnderscores()
    {
        QCOMPARE(MenuLabel::forPanel(u"shot_one_two.png"_s, {}), u"shot__one__two.png"_s);
    }

    void panelLabelLeavesAmpersandsAlone()
    {
        QCOMPARE(MenuLabel::forPanel(u"a & b&c.png"_s, {}), u"a & b&c.png"_s);
    }

    void panelLabelSetsTheCaptionApart()
    {
        QCOMPARE(MenuLabel::forPanel(u"Upload"_s, u"⌘U"_s), u"Upload  ⌘U"_s);
    }
};

TESSERY_TEST_MAIN(QCoreApplication, MenuLabelTest)
#include "MenuLabelTest.moc"
