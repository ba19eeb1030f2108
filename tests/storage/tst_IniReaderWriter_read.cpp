#include "SettingsFolder.h"
#include "storage/IniReaderWriter.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <memory>
#include <string>

/// What a reader of the settings files gets.
class tst_IniReaderWriter_read : public QObject {
    Q_OBJECT

private slots:
    void init();

    void missingFile_yieldsTheDefaultAndIsNotMade();
    void absentKey_yieldsTheDefaultAndLeavesTheFile();
    void emptyValue_isAsAbsent();
    void reading_neverChangesTheFile();
    void unquotedList_isJoinedToOneText_data();
    void unquotedList_isJoinedToOneText();
    void groupsAndKeys_areCaseSensitive();
    void keyByItsPath_isFound();
    void escapedNames_areReadToo();
    void editedFile_isReadAnew();
    void namesAbove127_areWidenedOneToOne();

private:
    std::unique_ptr<SettingsFolder> m_settings;
};

void tst_IniReaderWriter_read::init()
{
    m_settings = std::make_unique<SettingsFolder>();
    QVERIFY(m_settings->isValid());
}

void tst_IniReaderWriter_read::missingFile_yieldsTheDefaultAndIsNotMade()
{
    std::string value;
    QCOMPARE(ini_read("Calibration", "Z reference", "32000", value, m_settings->path()), 0);
    QCOMPARE(value, std::string("32000"));
    QVERIFY(!QFile::exists(m_settings->name()));
}

void tst_IniReaderWriter_read::absentKey_yieldsTheDefaultAndLeavesTheFile()
{
    const QByteArray before = "; by hand\n[Calibration]\nZ offset=4\n";
    m_settings->put(before);
    std::string value;
    QCOMPARE(ini_read("Calibration", "Z reference", "32000", value, m_settings->path()), 0);
    QCOMPARE(value, std::string("32000"));
    QCOMPARE(ini_read("Correction", "Z offset", "10", value, m_settings->path()), 0);
    QCOMPARE(value, std::string("10"));
    QCOMPARE(m_settings->text(), before);
}

void tst_IniReaderWriter_read::emptyValue_isAsAbsent()
{
    m_settings->put("[Calibration]\nZ offset=\nZ reference=\"\"\n");
    std::string value;
    QCOMPARE(ini_read("Calibration", "Z offset", "3", value, m_settings->path()), 0);
    QCOMPARE(value, std::string("3"));
    QCOMPARE(ini_read("Calibration", "Z reference", "32000", value, m_settings->path()), 0);
    QCOMPARE(value, std::string("32000"));
}

void tst_IniReaderWriter_read::reading_neverChangesTheFile()
{
    const QByteArray before = "[Volume%20factor]\n1%20Channel=1, 2\n";
    m_settings->put(before);
    const QDateTime stamp = QFileInfo(m_settings->name()).lastModified();
    std::string value;
    QCOMPARE(ini_read("Volume factor", "1 Channel", "", value, m_settings->path()), 1);
    QCOMPARE(m_settings->text(), before);
    QCOMPARE(QFileInfo(m_settings->name()).lastModified(), stamp);
    QCOMPARE(m_settings->entries(), QStringList { "TAVO_QR9.ini" });
}

void tst_IniReaderWriter_read::unquotedList_isJoinedToOneText_data()
{
    QTest::addColumn<QByteArray>("inFile");
    QTest::addColumn<QByteArray>("value");
    QTest::newRow("comma and blank") << QByteArray("a, b") << QByteArray("a, b");
    QTest::newRow("comma alone") << QByteArray("a,b") << QByteArray("a, b");
    QTest::newRow("three words") << QByteArray("a,b,c") << QByteArray("a, b, c");
    QTest::newRow("quoted") << QByteArray("\"a,b\"") << QByteArray("a,b");
}

void tst_IniReaderWriter_read::unquotedList_isJoinedToOneText()
{
    QFETCH(QByteArray, inFile);
    QFETCH(QByteArray, value);
    m_settings->put("[Group]\nkey=" + inFile + "\n");
    QCOMPARE(m_settings->valueOf("Group", "key"), value.toStdString());
}

void tst_IniReaderWriter_read::groupsAndKeys_areCaseSensitive()
{
    m_settings->put("[Ch. BF]\nGain=1\ngain=2\n[ch. bf]\nGain=3\n");
    QCOMPARE(m_settings->valueOf("Ch. BF", "Gain"), std::string("1"));
    QCOMPARE(m_settings->valueOf("Ch. BF", "gain"), std::string("2"));
    QCOMPARE(m_settings->valueOf("ch. bf", "Gain"), std::string("3"));
    QCOMPARE(m_settings->valueOf("CH. BF", "Gain"), SettingsFolder::noValue);
}

void tst_IniReaderWriter_read::keyByItsPath_isFound()
{
    m_settings->put("[ArduCAM]\nHor. Mirror=Yes\n");
    QCOMPARE(m_settings->valueOf("", "ArduCAM/Hor. Mirror"), std::string("Yes"));
}

void tst_IniReaderWriter_read::escapedNames_areReadToo()
{
    m_settings->put("[Volume%20factor]\n1%20Channel=197.00552\n");
    QCOMPARE(m_settings->valueOf("Volume factor", "1 Channel"), std::string("197.00552"));
}

void tst_IniReaderWriter_read::editedFile_isReadAnew()
{
    m_settings->put("[Start position]\n1 Channel=9893\n");
    QCOMPARE(m_settings->valueOf("Start position", "1 Channel"), std::string("9893"));
    m_settings->put("[Start position]\n1 Channel=10\n");
    QCOMPARE(m_settings->valueOf("Start position", "1 Channel"), std::string("10"));
    QVERIFY(QFile::remove(m_settings->name()));
    QCOMPARE(m_settings->valueOf("Start position", "1 Channel"), SettingsFolder::noValue);
}

void tst_IniReaderWriter_read::namesAbove127_areWidenedOneToOne()
{
    // The bytes of an e with accent in UTF-8 are the two Latin-1 characters 0xC3 and 0xA9 here, in the file's
    // name too.
    const std::string letter = "\xC3\xA9";
    const std::string file = m_settings->folder().toStdString() + "/" + letter + ".ini";
    ini_write("G" + letter, "K" + letter, "1", file);
    QFile written(m_settings->folder() + QString::fromUtf8("/Ã©.ini"));
    QVERIFY(written.open(QIODevice::ReadOnly));
    QCOMPARE(written.readAll(), QByteArray("[G%C3%A9]\nK%C3%A9=1\n"));
    std::string value;
    QCOMPARE(ini_read("G" + letter, "K" + letter, "", value, file), 1);
    QCOMPARE(value, std::string("1"));
}

QTEST_GUILESS_MAIN(tst_IniReaderWriter_read)

#include "tst_IniReaderWriter_read.moc"
