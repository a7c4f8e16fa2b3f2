#pragma once

#include <QCoreApplication>
#include <QTest>

/// The private surroundings of one test program: a HOME, XDG folders and a temporary folder of its
/// own, no session bus unless the test makes one. Any warning of Qt's fails the running test. On
/// leaving it checks that the program left no child process and no open file behind.
class TestSurroundings {
public:
    /// To be made before the application object.
    TestSurroundings();
    ~TestSurroundings();
    TestSurroundings(const TestSurroundings &) = delete;
    TestSurroundings &operator=(const TestSurroundings &) = delete;

    /// Run before every test function.
    static void failOnWarnings();

    /// Notes what is open now, as the state to return to.
    void noteStart();
    /// The number of things left behind since, each told on standard error.
    int leftovers() const;

private:
    QByteArray m_folder;
    int m_descriptors = 0;
};

/// main() of a test program: the application class and the test object's class.
#define TESSERY_TEST_MAIN(Application, TestClass)                                                  \
    int main(int argc, char *argv[])                                                               \
    {                                                                                              \
        TestSurroundings surroundings;                                                             \
        const Application application(argc, argv);                                                 \
        int result = 0;                                                                            \
        surroundings.noteStart();                                                                  \
        {                                                                                          \
            TestClass test;                                                                        \
            result = QTest::qExec(&test, argc, argv);                                              \
        }                                                                                          \
        return result + surroundings.leftovers();                                                  \
    }
