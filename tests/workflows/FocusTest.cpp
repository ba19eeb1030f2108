#include "tests/workflows/FocusTest.h"

#include <QCheckBox>
#include <QFileDialog>

void FocusTest::init()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
    QVERIFY(m_desk->connectUnit());
    QVERIFY(m_desk->rig.set("x", 30931)); // a field of cells
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_STAGE"));
}

void FocusTest::cleanup()
{
    m_desk.reset();
}

/// A watched run asks for its folder first.
int FocusTest::boxesOfARun()
{
    return m_desk->widget<QCheckBox>("checkBox_AUTOFOCUS_DEBUG")->isChecked() ? 2 : 1;
}

bool FocusTest::run()
{
    const int boxes = m_desk->boxes.boxes().size() + boxesOfARun();
    return hand::click(m_desk->window(), "pushButton_AUTOFOCUS") && m_desk->boxes.waitForBoxes(boxes, 60000);
}

bool FocusTest::runFine()
{
    const int boxes = m_desk->boxes.boxes().size() + boxesOfARun();
    m_desk->window().pushButton_AUTOFOCUS_clicked(false);
    return m_desk->boxes.waitForBoxes(boxes, 60000);
}

void FocusTest::watchInto(const QString& folder)
{
    m_desk->widget<QCheckBox>("checkBox_AUTOFOCUS_DEBUG")->setChecked(true);
    m_desk->boxes.handleNext([folder](QDialog& dialog) {
        auto* files = qobject_cast<QFileDialog*>(&dialog);
        if (files == nullptr)
            QFAIL("not a file dialog");
        QVERIFY(files->testOption(QFileDialog::ShowDirsOnly));
        files->setDirectory(folder);
        files->selectFile(folder);
        dialog.done(QDialog::Accepted);
    });
}

int FocusTest::stored(const QString& label) const
{
    const QStringList lines = m_desk->log.lines().filter(label + " m_AutofocusingRef:");
    return lines.isEmpty() ? 0 : lines.last().section(' ', 3, 3).toInt();
}

QString focus_lines::step(int size)
{
    return QString("$Z#STAGE STEP %1").arg(size);
}

QString focus_lines::direction(const char* name)
{
    return QString("$Z#STAGE DIR %1").arg(name);
}

QString focus_lines::absolute(int position)
{
    return QString("$Z#STAGE ABS %1").arg(position);
}

QStringList focus_lines::repeated(const QString& line, int count)
{
    QStringList lines;
    for (int i = 0; i < count; ++i)
        lines << line;
    return lines;
}
