#include "ui/settings/StyledNumberField.h"

#include "support/TestMain.h"

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QObject>
#include <QPushButton>
#include <QSignalSpy>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

class StyledNumberFieldTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_window = std::make_unique<QWidget>();
        auto *layout = new QVBoxLayout(m_window.get());
        m_number = new StyledNumberField(u"Port"_s, 1, 65535, m_window.get());
        m_other = new QPushButton(m_window.get());
        layout->addWidget(m_number);
        layout->addWidget(m_other);
        m_value = 22;
        m_number->setValue(m_value);
        connect(m_number, &StyledNumberField::edited, m_window.get(),
                [this](std::int64_t value) { m_value = value; });
        m_window->setFixedSize(200, 120);
        m_window->show();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }

    void cleanup() { m_window.reset(); }

    void numbersAreNeverGrouped()
    {
        m_number->setValue(65535);
        QCOMPARE(m_number->field()->text(), u"65535"_s);
    }

    void typedNumberCountsAtOnce()
    {
        retype(u"2200"_s);
        QCOMPARE(m_value, 2200);
        QVERIFY(error().isEmpty());
    }

    void numberOutOfLimitsDoesNotCount_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::newRow("zero") << u"0"_s;
        QTest::newRow("too large") << u"65536"_s;
        QTest::newRow("empty") << QString();
    }
    void numberOutOfLimitsDoesNotCount()
    {
        QFETCH(const QString, typed);
        retype(typed);
        QCOMPARE(m_value, 22);
        QVERIFY(!error().isEmpty());
        QCOMPARE(m_number->field()->accessibleDescription(), error());
        m_other->setFocus();
        QCOMPARE(m_number->field()->text(), u"22"_s);
        QVERIFY(error().isEmpty());
    }

    void errorMovesNothing()
    {
        const QRect before = m_number->field()->parentWidget()->geometry();
        retype(QString());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
        QVERIFY(!error().isEmpty());
        QCOMPARE(m_number->field()->parentWidget()->geometry(), before);
    }

    void limitsCount()
    {
        retype(u"1"_s);
        QCOMPARE(m_value, 1);
        retype(u"65535"_s);
        QCOMPARE(m_value, 65535);
    }

    void numberOnTheWayToATooLargeOneDoesNotStay()
    {
        retype(u"99999"_s);
        QCOMPARE(m_value, 22);
        m_other->setFocus();
        QCOMPARE(m_number->field()->text(), u"22"_s);
    }

    void returnTakesTheNumber()
    {
        retype(u"0080"_s);
        QTest::keyClick(m_number->field(), Qt::Key_Return);
        QCOMPARE(m_value, 80);
        QCOMPARE(m_number->field()->text(), u"80"_s);
        retype(QString());
        QTest::keyClick(m_number->field(), Qt::Key_Return);
        QCOMPARE(m_value, 80);
        QCOMPARE(m_number->field()->text(), u"80"_s);
    }

    void otherCharactersAreRefused()
    {
        retype(u"-2a.5e"_s);
        QCOMPARE(m_number->field()->text(), u"25"_s);
        QCOMPARE(m_value, 25);
    }

    void moreDigitsThanTheLimitHasAreRefused()
    {
        retype(u"123456"_s);
        QCOMPARE(m_number->field()->text(), u"12345"_s);
    }

    void pastedGroupingIsDropped()
    {
        QApplication::clipboard()->setText(u" 2,200\n"_s);
        retype(QString());
        QTest::keyClick(m_number->field(), Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(m_number->field()->text(), u"2200"_s);
        QCOMPARE(m_value, 2200);
    }

    void shownValueOutOfLimitsIsToldAndStays()
    {
        m_number->setValue(0);
        QCOMPARE(m_number->field()->text(), u"0"_s);
        QVERIFY(!error().isEmpty());
        m_number->field()->setFocus();
        m_other->setFocus();
        QCOMPARE(m_number->field()->text(), u"0"_s);
    }

    void showingTheSameValueKeepsWhatIsBeingTyped()
    {
        retype(QString());
        m_number->setValue(m_value);
        QCOMPARE(m_number->field()->text(), QString());
    }

    void digitsOfATextAsPasted_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<std::optional<QString>>("digits");
        const auto row = [](const char *name, const QString &text,
                            const std::optional<QString> &digits) {
            QTest::newRow(name) << text << digits;
        };
        row("plain", u"22"_s, u"22"_s);
        row("empty", QString(), QString());
        row("blanks", u" 22\t"_s, u"22"_s);
        row("comma", u"2,200"_s, u"2200"_s);
        row("point", u"65.535"_s, u"65535"_s);
        row("two groups", u"1,234,567"_s, u"1234567"_s);
        row("long first group", u"1234,567"_s, std::nullopt);
        row("short last group", u"1,234,56"_s, std::nullopt);
        row("separator at the end", u"22,"_s, std::nullopt);
        row("narrow blank", u"65\u202f535"_s, u"65535"_s);
        row("apostrophe", u"65’535"_s, u"65535"_s);
        row("other digits", u"٢٢"_s, u"22"_s);
        row("fraction", u"2.5"_s, std::nullopt);
        row("sign", u"-22"_s, std::nullopt);
        row("letters", u"22a"_s, std::nullopt);
        row("list", u"22,21"_s, std::nullopt);
    }
    void digitsOfATextAsPasted()
    {
        QFETCH(const QString, text);
        QFETCH(const std::optional<QString>, digits);
        QCOMPARE(plainDigits(text), digits);
    }

private:
    QString error() const { return m_number->field()->toolTip(); }

    void retype(const QString &text) const
    {
        m_number->field()->setFocus();
        m_number->field()->selectAll();
        QTest::keyClick(m_number->field(), Qt::Key_Delete);
        QTest::keyClicks(m_number->field(), text);
    }

    std::unique_ptr<QWidget> m_window;
    StyledNumberField *m_number = nullptr;
    QPushButton *m_other = nullptr;
    std::int64_t m_value = 0;
};

TESSERY_TEST_MAIN(QApplication, StyledNumberFieldTest)
#include "StyledNumberFieldTest.moc"
