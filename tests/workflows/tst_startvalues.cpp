#include "tests/workflows/Desk.h"

#include <QCheckBox>
#include <QRadioButton>

/// What the identity, option and mirror widgets show when the window comes up with a settings file.
class tst_startvalues : public QObject {
    Q_OBJECT

private slots:
    void cleanup();

    void serial_isSplitIntoItsParts_data();
    void serial_isSplitIntoItsParts();
    void brightFieldUnit_hasNoFluorescenceButtons_data();
    void brightFieldUnit_hasNoFluorescenceButtons();
    void options_lookForTheWordYes_data();
    void options_lookForTheWordYes();
    void mirrors_compareTheWholeWord_data();
    void mirrors_compareTheWholeWord();

private:
    /// A window of its own for each file; it is gone again before it would begin to connect.
    MainWindow& openWith(const QByteArray& file)
    {
        Desk::putSettings(file);
        m_desk.reset(new Desk);
        m_desk->open();
        return m_desk->window();
    }

    std::unique_ptr<Desk> m_desk;
};

void tst_startvalues::cleanup()
{
    m_desk.reset();
}

void tst_startvalues::serial_isSplitIntoItsParts_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QStringList>("parts");
    QTest::newRow("no key") << QByteArray() << QStringList({ "TV9", "00", "00000" });
    QTest::newRow("stored") << QByteArray("[TAVO-QR9]\nSerial=TV8-12-34567\n")
                            << QStringList({ "TV8", "12", "34567" });
    QTest::newRow("one part") << QByteArray("[TAVO-QR9]\nSerial=TV8\n") << QStringList({ "TV8", "", "" });
    QTest::newRow("empty parts") << QByteArray("[TAVO-QR9]\nSerial=--\n") << QStringList({ "", "", "" });
}

void tst_startvalues::serial_isSplitIntoItsParts()
{
    QFETCH(QByteArray, file);
    QFETCH(QStringList, parts);
    openWith(file);
    QCOMPARE(m_desk->text("lineEdit_SERIAL_MODEL"), parts[0]);
    QCOMPARE(m_desk->text("lineEdit_SERIAL_PREFIX"), parts[1]);
    QCOMPARE(m_desk->text("lineEdit_SERIAL_SUFFIX"), parts[2]);
    QCOMPARE(Desk::settings(), file);
}

void tst_startvalues::brightFieldUnit_hasNoFluorescenceButtons_data()
{
    QTest::addColumn<QByteArray>("serial");
    QTest::addColumn<bool>("fluorescence");
    QTest::newRow("B in the suffix") << QByteArray("TV9-00-000B1") << false;
    QTest::newRow("small b in the suffix") << QByteArray("TV9-00-000b1") << true;
    QTest::newRow("B in the model") << QByteArray("TVB-00-00001") << true;
    QTest::newRow("B in the prefix") << QByteArray("TV9-0B-00001") << true;
    QTest::newRow("B behind the third part") << QByteArray("TV9-00-00001-B") << true;
}

void tst_startvalues::brightFieldUnit_hasNoFluorescenceButtons()
{
    QFETCH(QByteArray, serial);
    QFETCH(bool, fluorescence);
    openWith("[TAVO-QR9]\nSerial=" + serial + "\n");
    // On its page, which is not the one in front.
    for (const char* name : { "pushButton_ILLUMINATION_GFP", "pushButton_ILLUMINATION_RFP" })
        QCOMPARE(!m_desk->widget(name)->isHidden(), fluorescence);
    QVERIFY(!m_desk->widget("pushButton_ILLUMINATION_BF")->isHidden());
}

void tst_startvalues::options_lookForTheWordYes_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<bool>("yes");
    QTest::newRow("Yes") << QByteArray("=Yes") << true;
    QTest::newRow("No") << QByteArray("=No") << false;
    QTest::newRow("Yes among other words") << QByteArray("=No, Yes!") << true;
    QTest::newRow("yes in small letters") << QByteArray("=yes") << false;
    QTest::newRow("empty") << QByteArray("=") << false;
    QTest::newRow("another key") << QByteArray(" 2=Yes") << false;
}

void tst_startvalues::options_lookForTheWordYes()
{
    QFETCH(QByteArray, value);
    QFETCH(bool, yes);
    // One option at a time: the others keep their default.
    const QList<QPair<QByteArray, QString>> options { { "Vatline", "VATLINE" }, { "TallyLink", "TALLYLINK" },
        { "QLPK", "QLPK" } };
    for (const auto& stored : options) {
        openWith("[TAVO-QR9]\n" + stored.first + value + "\n");
        for (const auto& option : options) {
            const bool expected = yes && option == stored;
            const auto isChecked = [&](const char* answer) {
                return m_desk->window()
                    .findChild<QRadioButton*>("radioButton_" + option.second + answer)
                    ->isChecked();
            };
            QCOMPARE(isChecked("_YES"), expected);
            QCOMPARE(isChecked("_NO"), !expected);
        }
    }
}

void tst_startvalues::mirrors_compareTheWholeWord_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<bool>("horizontal");
    QTest::addColumn<bool>("vertical");
    QTest::newRow("no keys") << QByteArray() << false << true;
    QTest::newRow("Yes, Yes") << QByteArray("[ArduCAM]\nHor. Mirror=Yes\nVer. Mirror=Yes\n") << true << true;
    QTest::newRow("No, No") << QByteArray("[ArduCAM]\nHor. Mirror=No\nVer. Mirror=No\n") << false << false;
    QTest::newRow("more than the word")
        << QByteArray("[ArduCAM]\nHor. Mirror=Yes!\nVer. Mirror=Yes!\n") << false << false;
    QTest::newRow("empty") << QByteArray("[ArduCAM]\nHor. Mirror=\nVer. Mirror=\n") << false << true;
}

void tst_startvalues::mirrors_compareTheWholeWord()
{
    QFETCH(QByteArray, file);
    openWith(file);
    QTEST(m_desk->widget<QCheckBox>("checkBox_HOR_MIRROR")->isChecked(), "horizontal");
    QTEST(m_desk->widget<QCheckBox>("checkBox_VER_MIRROR")->isChecked(), "vertical");
    QCOMPARE(Desk::settings(), file);
}

WORKFLOW_MAIN(tst_startvalues)
#include "tst_startvalues.moc"
