#include "ui/settings/StatusBadge.h"

#include "support/TestMain.h"
#include "ui/settings/Spinner.h"
#include "ui/settings/SymbolView.h"

#include <QApplication>
#include <QLabel>
#include <QObject>

using namespace Qt::StringLiterals;
using Status = StatusBadge::Status;
using SettingsTheme::Tint;

class StatusBadgeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_window = std::make_unique<QWidget>();
        m_window->setFixedSize(200, 40);
        m_badge = new StatusBadge(m_window.get());
        m_window->show();
    }

    void cleanup() { m_window.reset(); }

    void eachStatusHasItsSymbol_data()
    {
        QTest::addColumn<Status>("status");
        QTest::addColumn<QString>("symbol");
        QTest::newRow("success") << Status::success << u"checkmark.circle.fill"_s;
        QTest::newRow("error") << Status::error << u"xmark.circle.fill"_s;
        QTest::newRow("warning") << Status::warning << u"exclamationmark.triangle.fill"_s;
    }
    void eachStatusHasItsSymbol()
    {
        QFETCH(const Status, status);
        StatusBadge &badge = *m_badge;
        badge.setMessage(status, u"Message"_s);
        QTEST(badge.findChild<SymbolView *>()->name(), "symbol");
        QVERIFY(badge.findChild<SymbolView *>()->isVisible());
        QVERIFY(!badge.findChild<Spinner *>()->isVisible());
        QCOMPARE(badge.status(), status);
        QCOMPARE(badge.message(), u"Message"_s);
        QCOMPARE(badge.accessibleName(), u"Message"_s);
    }

    void loadingSpins()
    {
        StatusBadge &badge = *m_badge;
        badge.setMessage(Status::loading, u"Message"_s);
        QVERIFY(badge.findChild<Spinner *>()->isVisible());
        QVERIFY(!badge.findChild<SymbolView *>()->isVisible());
    }

    void onlyAnErrorsMessageIsRed()
    {
        StatusBadge &badge = *m_badge;
        const QColor red = SettingsTheme::color(Tint::Red, badge.palette());
        for (const Status status :
             {Status::success, Status::error, Status::loading, Status::warning}) {
            badge.setMessage(status, u"Message"_s);
            const auto *const label = badge.findChild<QLabel *>();
            QCOMPARE(label->palette().color(QPalette::WindowText) == red, status == Status::error);
        }
    }

private:
    std::unique_ptr<QWidget> m_window;
    StatusBadge *m_badge = nullptr;
};

TESSERY_TEST_MAIN(QApplication, StatusBadgeTest)
#include "StatusBadgeTest.moc"
