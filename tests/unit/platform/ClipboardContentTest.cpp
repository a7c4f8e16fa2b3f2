#include "platform/linux/ClipboardContent.h"
#include "support/CapturedOutput.h"
#include "support/TestMain.h"

#include <map>

using namespace Qt::StringLiterals;

namespace {

/// What an owner of the clipboard offers, and what it was asked for.
struct Owner {
    std::map<QString, QByteArray> forms;
    QStringList silentAt; ///< The forms, or "types", at which it hangs.
    QStringList asked;

    bool hangsAt(const QString &what)
    {
        asked << what;
        return silentAt.contains(what);
    }
};

class OwnerSource final : public ClipboardSource {
public:
    explicit OwnerSource(Owner &owner) : m_owner(owner) { }

    QCoro::Task<std::optional<QStringList>> types() override
    {
        if (m_owner.hangsAt(u"types"_s))
            co_return std::nullopt;
        QStringList types;
        for (const auto &[type, data] : m_owner.forms)
            types << type;
        co_return types;
    }

    QCoro::Task<std::optional<QByteArray>> data(QString type) override
    {
        if (m_owner.hangsAt(type))
            co_return std::nullopt;
        co_return m_owner.forms.at(type);
    }

private:
    Owner &m_owner;
};

} // namespace

class ClipboardContentTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_owner = {};
    }

    void everyKindIsReadAndTheTypesOnce()
    {
        m_owner.forms = {{u"text/uri-list"_s, "file:///a\r\n"},
                         {u"UTF8_STRING"_s, "words"},
                         {u"image/png"_s, "pixels"}};
        ClipboardContent content = contentOfOwner();
        QCOMPARE(QCoro::waitFor(content.addresses()), QList<QUrl>{QUrl(u"file:///a"_s)});
        QCOMPARE(QCoro::waitFor(content.text()), u"words"_s);
        QCOMPARE(QCoro::waitFor(content.image()), QByteArray("pixels"));
        QCOMPARE(m_owner.asked,
                 QStringList({u"types"_s, u"text/uri-list"_s, u"UTF8_STRING"_s, u"image/png"_s}));
    }

    void onlyWhatIsOnOfferIsAskedFor()
    {
        m_owner.forms = {{u"UTF8_STRING"_s, "words"}};
        ClipboardContent content = contentOfOwner();
        QVERIFY(QCoro::waitFor(content.addresses()).isEmpty());
        QCOMPARE(QCoro::waitFor(content.text()), u"words"_s);
        QCOMPARE(QCoro::waitFor(content.image()), std::nullopt);
        QCOMPARE(m_owner.asked, QStringList({u"types"_s, u"UTF8_STRING"_s}));
    }

    void emptyAnswersAreNothing()
    {
        m_owner.forms = {{u"text/uri-list"_s, ""}, {u"UTF8_STRING"_s, ""}, {u"image/png"_s, ""}};
        ClipboardContent content = contentOfOwner();
        QVERIFY(isEmpty(content));
        QCOMPARE(m_owner.asked.size(), 4);
    }

    void withoutASourceEverythingIsEmpty()
    {
        ClipboardContent content(nullptr);
        QVERIFY(isEmpty(content));
    }

    void silentOwnerIsAskedNoMore_data()
    {
        QTest::addColumn<QString>("silentAt");
        QTest::addColumn<int>("questions");
        QTest::newRow("at once") << u"types"_s << 1;
        QTest::newRow("at the addresses") << u"text/uri-list"_s << 2;
    }
    void silentOwnerIsAskedNoMore()
    {
        QFETCH(QString, silentAt);
        m_owner.forms = {{u"text/uri-list"_s, "file:///a\r\n"},
                         {u"UTF8_STRING"_s, "words"},
                         {u"image/png"_s, "pixels"}};
        m_owner.silentAt = {silentAt};
        ClipboardContent content = contentOfOwner();
        QVERIFY(isEmpty(content));
        QTEST(static_cast<int>(m_owner.asked.size()), "questions");
    }

    void silenceIsLoggedForTheDiagnostician()
    {
        m_owner.forms = {{u"UTF8_STRING"_s, "words"}};
        m_owner.silentAt = {u"UTF8_STRING"_s};
        CapturedOutput output;
        ClipboardContent content = contentOfOwner();
        QVERIFY(isEmpty(content));
        QCOMPARE(output.lines(),
                 QStringList(u"⚠️ The program that owns the clipboard does not answer"_s));
    }

    void secretIsNeverRead()
    {
        m_owner.forms = {{u"text/uri-list"_s, "file:///a\r\n"},
                         {u"UTF8_STRING"_s, "a password"},
                         {u"image/png"_s, "pixels"},
                         {u"x-kde-passwordManagerHint"_s, "secret"}};
        CapturedOutput output;
        ClipboardContent content = contentOfOwner();
        QVERIFY(isEmpty(content));
        QCOMPARE(m_owner.asked, QStringList({u"types"_s, u"x-kde-passwordManagerHint"_s}));
        QVERIFY(!output.bytes().contains("a password"));
    }

    void secretIsNeverReadWhicheverKindIsAskedForFirst()
    {
        m_owner.forms = {{u"UTF8_STRING"_s, "a password"},
                         {u"x-kde-passwordManagerHint"_s, "secret"}};
        ClipboardContent first = contentOfOwner();
        QCOMPARE(QCoro::waitFor(first.text()), QString());
        ClipboardContent second = contentOfOwner();
        QCOMPARE(QCoro::waitFor(second.image()), std::nullopt);
        QVERIFY(!m_owner.asked.contains(u"UTF8_STRING"_s));
    }

    void hintThatIsNotToBeHadCountsAsSecret()
    {
        m_owner.forms = {{u"UTF8_STRING"_s, "a password"},
                         {u"x-kde-passwordManagerHint"_s, "secret"}};
        m_owner.silentAt = {u"x-kde-passwordManagerHint"_s};
        ClipboardContent content = contentOfOwner();
        QVERIFY(isEmpty(content));
        QVERIFY(!m_owner.asked.contains(u"UTF8_STRING"_s));
    }

    void anotherHintIsNoSecret()
    {
        m_owner.forms = {{u"UTF8_STRING"_s, "words"}, {u"x-kde-passwordManagerHint"_s, "public"}};
        ClipboardContent content = contentOfOwner();
        QCOMPARE(QCoro::waitFor(content.text()), u"words"_s);
    }

private:
    ClipboardContent contentOfOwner()
    {
        return ClipboardContent(std::make_unique<OwnerSource>(m_owner));
    }

    static bool isEmpty(ClipboardContent &content)
    {
        return QCoro::waitFor(content.addresses()).isEmpty()
            && QCoro::waitFor(content.text()).isEmpty() && !QCoro::waitFor(content.image());
    }

    Owner m_owner;
};

TESSERY_TEST_MAIN(QGuiApplication, ClipboardContentTest)
#include "ClipboardContentTest.moc"
