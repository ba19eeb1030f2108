#include "tests/support/program_output.h"

#include <QtTest>

/// What the build fills the metadata's records with: the script that writes their values, run by itself.
class tst_zr_meta_values : public QObject {
    Q_OBJECT

private slots:
    void buildValues_areThoseOfTheRepository();
    void buildValues_outsideOfARepository();
    void buildTime_isTheOneOfTheEnvironment_data();
    void buildTime_isTheOneOfTheEnvironment();
};

namespace {

/// A folder of sources, and what the build writes into its header of values for it.
class Sources {
public:
    Sources()
    {
        m_environment.remove("SOURCE_DATE_EPOCH");
        m_environment.remove("GIT_DIR");
        // No repository that the folder for temporary files may stand in.
        m_environment.insert("GIT_CEILING_DIRECTORIES", QFileInfo(m_folder.path()).path());
    }

    void setVariable(const QString& name, const QString& value) { m_environment.insert(name, value); }

    /// Makes it a repository of one commit of that time; returns the commit's name.
    QByteArray commit(const QString& time)
    {
        const QStringList inFolder { "-C", m_folder.path() };
        run("git", inFolder + QStringList { "init", "--quiet" });
        setVariable("GIT_COMMITTER_DATE", time);
        run("git",
            inFolder
                + QStringList { "-c", "user.name=a", "-c", "user.email=a@b", "commit", "--quiet",
                    "--allow-empty", "--message=a" });
        return run("git", inFolder + QStringList { "rev-parse", "HEAD" }).trimmed();
    }

    /// The values' header: the text behind each name.
    QMap<QByteArray, QByteArray> values()
    {
        const QString header = m_folder.filePath("values.h");
        run(QR9_CMAKE,
            { "-DSOURCE_DIR=" + m_folder.path(), "-DVERSION=2.4.2", "-DOUTPUT=" + header, "-P",
                QR9_VALUES_SCRIPT });
        QFile file(header);
        QMap<QByteArray, QByteArray> values;
        if (file.open(QIODevice::ReadOnly)) {
            for (const QByteArray& line : file.readAll().split('\n')) {
                const QList<QByteArray> words = line.split(' ');
                if (words.value(0) == "#define")
                    values.insert(words.value(1), words.value(2));
            }
        }
        return values;
    }

private:
    QByteArray run(const QString& program, const QStringList& arguments) const
    {
        return outputOf(program, arguments, m_environment);
    }

    QTemporaryDir m_folder;
    QProcessEnvironment m_environment = QProcessEnvironment::systemEnvironment();
};

} // namespace

void tst_zr_meta_values::buildValues_areThoseOfTheRepository()
{
    Sources sources;
    const QByteArray commit = sources.commit("1700000000 +0000");
    if (commit.isEmpty())
        QFAIL("git is missing: scripts/setup installs it");
    const auto values = sources.values();
    QCOMPARE(values["QR9_REVISION"], '"' + commit.left(10) + '"');
    QCOMPARE(values["QR9_BUILD_DATE"], QByteArray("\"1700000000\""));
    QCOMPARE(values["QR9_VERSION"], QByteArray("\"2.4.2\""));
}

void tst_zr_meta_values::buildValues_outsideOfARepository()
{
    const qint64 before = QDateTime::currentSecsSinceEpoch();
    const auto values = Sources().values();
    const qint64 after = QDateTime::currentSecsSinceEpoch();
    QCOMPARE(values["QR9_REVISION"], QByteArray("\"non-repo\""));
    const qint64 date = values["QR9_BUILD_DATE"].mid(1, 10).toLongLong();
    QVERIFY(date >= before && date <= after);
    QCOMPARE(values["QR9_VERSION"], QByteArray("\"2.4.2\""));
}

void tst_zr_meta_values::buildTime_isTheOneOfTheEnvironment_data()
{
    QTest::addColumn<QString>("variable");
    QTest::addColumn<QByteArray>("date");
    QTest::newRow("a time") << "1750411409" << QByteArray("\"1750411409\"");
    QTest::newRow("second 0") << "0" << QByteArray("\"0\"");
    QTest::newRow("empty") << "" << QByteArray("\"1700000000\"");
    QTest::newRow("no number") << "today" << QByteArray("\"1700000000\"");
}

void tst_zr_meta_values::buildTime_isTheOneOfTheEnvironment()
{
    QFETCH(QString, variable);
    Sources sources;
    if (sources.commit("1700000000 +0000").isEmpty())
        QFAIL("git is missing: scripts/setup installs it");
    sources.setVariable("SOURCE_DATE_EPOCH", variable);
    QTEST(sources.values()["QR9_BUILD_DATE"], "date");
}

QTEST_APPLESS_MAIN(tst_zr_meta_values)
#include "tst_zr_meta_values.moc"
