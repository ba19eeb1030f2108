#include "app/version_text.h"
#include "app/zr_meta.h"
#include "tests/support/program_output.h"

#include <QtTest>

/// The build metadata: in this process, and in the section of the built program's file.
class tst_zr_meta : public QObject {
    Q_OBJECT

private slots:
    void records_areKeyAndValue();
    void applicationVersion_joinsThreeParts();
    void buildSeconds_becomeLocalTime();
    void buildSeconds_areShownInTheTimeOfThePlace();
    void section_isReadOnlyAndAlignedTo16();
    void section_holdsTheRecordsAtTheirOffsets();
};

namespace {

/// Offset of the record behind one of this many bytes (NUL included) at `offset`: records of 16 bytes or more
/// begin at a multiple of 16, shorter ones at a multiple of 8.
int offsetBehind(int offset, int size, int nextSize)
{
    const int alignment = nextSize >= 16 ? 16 : 8;
    return (offset + size + alignment - 1) / alignment * alignment;
}

} // namespace

void tst_zr_meta::records_areKeyAndValue()
{
    QCOMPARE(QString(zr_meta::VERSION), QString("VERSION=2.4.2"));
    QCOMPARE(QString(zr_meta::BASE_VERSION), QString("BASE_VERSION=2.4.2"));
    QVERIFY(QRegularExpression("^BUILD_DATE=[0-9]+$").match(zr_meta::BUILD_DATE).hasMatch());
    QVERIFY(
        QRegularExpression("^BASE_SVN_REV=(non-repo|[0-9a-f]+)$").match(zr_meta::BASE_SVN_REV).hasMatch());
}

void tst_zr_meta::applicationVersion_joinsThreeParts()
{
    const QStringList parts = version_text::applicationVersion().split("|");
    QCOMPARE(parts.size(), 3);
    QCOMPARE(parts[0], QString("VERSION=2.4.2"));
    QCOMPARE("BUILD_DATE=" + parts[1], QString(zr_meta::BUILD_DATE));
    QCOMPARE(parts[2], QString(zr_meta::BASE_SVN_REV));
}

void tst_zr_meta::buildSeconds_becomeLocalTime()
{
    qputenv("TZ", "UTC");
    QCOMPARE(version_text::dateText(1750411409), QString("2025-06-20 09:23"));
    QCOMPARE(version_text::dateText(0), QString("1970-01-01 00:00"));
    // Behind 2038: the seconds do not fit 32 bits as milliseconds.
    QCOMPARE(version_text::dateText(4102444800), QString("2100-01-01 00:00"));
    QCOMPARE(version_text::valueOf("  [    20]  BUILD_DATE=1750411409"), QString("1750411409"));
    QCOMPARE(version_text::valueOf("no record"), QString());
}

void tst_zr_meta::buildSeconds_areShownInTheTimeOfThePlace()
{
    qputenv("TZ", "PLACE-9"); // nine hours east of Greenwich
    QCOMPARE(version_text::dateText(1750411409), QString("2025-06-20 18:23"));
    qputenv("TZ", "UTC");
}

void tst_zr_meta::section_isReadOnlyAndAlignedTo16()
{
    const QString sections = outputOf("readelf", { "-S", "-W", QR9_PROGRAM });
    const QStringList found = sections.split("\n").filter("ZR_META");
    QCOMPARE(found.size(), 1);
    // name, type, address, offset, size, entry size, flags, link, info, alignment
    const QStringList fields = found[0].section("ZR_META", 1).simplified().split(" ");
    QCOMPARE(fields[5], QString("A"));
    QCOMPARE(fields.last().toInt(), 16);
}

void tst_zr_meta::section_holdsTheRecordsAtTheirOffsets()
{
    QTemporaryDir folder;
    const QString file = folder.filePath("section");
    outputOf("objcopy", { "-O", "binary", "--only-section=ZR_META", QR9_PROGRAM, file });
    QFile section(file);
    QVERIFY(section.open(QIODevice::ReadOnly));
    const QByteArray found = section.readAll();

    QByteArray expected;
    int offset = 0;
    const char* const records[]
        = { zr_meta::BASE_SVN_REV, zr_meta::BUILD_DATE, zr_meta::BASE_VERSION, zr_meta::VERSION };
    for (int i = 0; i < 4; ++i) {
        const QByteArray record(records[i]);
        expected.append(QByteArray(offset - expected.size(), '\0'));
        expected.append(record).append('\0');
        if (i < 3)
            offset = offsetBehind(offset, record.size() + 1, int(qstrlen(records[i + 1])) + 1);
    }
    QCOMPARE(found, expected);

    // With a revision of the usual length the places are these.
    if (QByteArray(zr_meta::BASE_SVN_REV).size() < 32 && QByteArray(zr_meta::BASE_SVN_REV).size() >= 16) {
        QCOMPARE(found.size(), 102);
        QVERIFY(found.mid(0x00).startsWith("BASE_SVN_REV="));
        QVERIFY(found.mid(0x20).startsWith("BUILD_DATE="));
        QVERIFY(found.mid(0x40).startsWith("BASE_VERSION="));
        QVERIFY(found.mid(0x58).startsWith("VERSION="));
    }
}

QTEST_APPLESS_MAIN(tst_zr_meta)
#include "tst_zr_meta.moc"
