#include "form_notes.h"
#include "form_table.h"
#include "tests/support/MessageBoxWatcher.h"
#include "ui_MainWindow.h"

#include <pylon/PylonIncludes.h>

#include <QtTest>

#include <memory>

/// The form alone, without the window's behaviour and without a camera.
class tst_form : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void everyWidget_standsWhereTheFormHasIt_data();
    void everyWidget_standsWhereTheFormHasIt();
    void widgetsOfAPage_areMadeInThisOrder();
    void theForm_holdsTheseWidgetsAndNoOthers();
    void widgets_standWithoutLayouts();
    void theWindow_hasItsSizeTitleAndFont();
    void atStart_theTabsAreOnQC1AndTheSlideIs2Channel();
    void theTabs_areInOrder();
    void theSlideList_isInOrder();
    void theSlideMap_hasNoHeadersBarsEditsOrSelection();
    void workflowButtons_areViolet();
    void arrowDown_hasAPictureForEachState();
    void buttons_takeNoFocus();
    void editableFields_takeAClickAndStandRight();
    void windowWithAName_keepsIt();

private:
    QMainWindow* m_window = nullptr;
    Ui::MainWindow m_ui;
};

void tst_form::initTestCase()
{
    Pylon::PylonInitialize();
    MessageBoxWatcher watcher; // no camera is on the bus
    m_window = new QMainWindow;
    m_ui.setupUi(m_window);
}

void tst_form::cleanupTestCase()
{
    delete m_window;
    Pylon::PylonTerminate(true);
}

void tst_form::everyWidget_standsWhereTheFormHasIt_data()
{
    QTest::addColumn<int>("row");
    int row = 0;
    for (const FormRow& widget : kForm)
        QTest::newRow(widget.name) << row++;
}

void tst_form::everyWidget_standsWhereTheFormHasIt()
{
    QFETCH(int, row);
    const FormRow& expected = kForm[row];
    auto* widget = m_window->findChild<QWidget*>(expected.name);
    QVERIFY(widget != nullptr);
    QCOMPARE(QString(widget->metaObject()->className()), QString(expected.className));
    QCOMPARE(widget->geometry(), QRect(expected.x, expected.y, expected.width, expected.height));

    const QString text = QString::fromUtf8(expected.text);
    if (widget->property("title").isValid() && qobject_cast<QGroupBox*>(widget))
        QCOMPARE(widget->property("title").toString(), text);
    else if (qobject_cast<QAbstractButton*>(widget) || qobject_cast<QLabel*>(widget)
        || qobject_cast<QLineEdit*>(widget))
        QCOMPARE(widget->property("text").toString(), text);

    QWidget* page = widget;
    while (page != nullptr && !page->objectName().startsWith("TAB_"))
        page = page->parentWidget();
    QCOMPARE(page != nullptr ? page->objectName() : QString(), QString(expected.page));

    const QStringList notes
        = QString::fromUtf8(expected.notes).split(QRegularExpression("[;,] "), Qt::SkipEmptyParts);
    int understood = notes.count("disabled");
    QCOMPARE(widget->isEnabledTo(widget->parentWidget()), understood == 0);
    // What is not noted is as in any other widget of the class, whose value keeps to its limits.
    const auto make = kFresh.value(expected.className);
    const std::unique_ptr<QWidget> fresh(make != nullptr ? make() : new QWidget);
    for (const NotedProperty& noted : kNotedProperties) {
        if (!fresh->property(noted.property).isValid())
            continue;
        double value = fresh->property(noted.property).toDouble();
        const QStringList found = notes.filter(QRegularExpression(QString("^%1( |$)").arg(noted.note)));
        understood += found.size();
        if (!found.isEmpty())
            value = found.first() == noted.note ? 1.0 : found.first().section(' ', -1).toDouble();
        const double actual = widget->property(noted.property).toDouble();
        QVERIFY2(qFuzzyCompare(1.0 + actual, 1.0 + value),
            qPrintable(QString("%1: %2 and not %3").arg(noted.property).arg(actual).arg(value)));
        fresh->setProperty(noted.property, widget->property(noted.property));
    }
    QCOMPARE(understood, notes.size());
}

void tst_form::widgetsOfAPage_areMadeInThisOrder()
{
    // Where widgets overlap, the later one lies in front.
    QHash<const QWidget*, int> last;
    for (const FormRow& row : kForm) {
        auto* widget = m_window->findChild<QWidget*>(row.name);
        QWidget* parent = widget->parentWidget();
        const int place = parent->children().indexOf(widget);
        QVERIFY2(place > last.value(parent, -1), row.name);
        last[parent] = place;
    }
}

void tst_form::widgets_standWithoutLayouts()
{
    QVERIFY(m_window->centralWidget()->layout() == nullptr);
    QVERIFY(m_ui.groupBox_CAPTURE->layout() == nullptr);
    for (int i = 0; i < m_ui.tabWidget_CONTROLLER->count(); ++i)
        QVERIFY(m_ui.tabWidget_CONTROLLER->widget(i)->layout() == nullptr);
}

void tst_form::theForm_holdsTheseWidgetsAndNoOthers()
{
    QStringList expected;
    for (const FormRow& row : kForm)
        expected << row.name;
    QCOMPARE(expected.size(), 170);

    // Named by the form: everything but the pages and what Qt builds inside of its own widgets.
    QStringList found;
    const auto widgets
        = m_window->findChildren<QWidget*>(QRegularExpression("^[a-zA-Z]+_[A-Z0-9_]*[A-Za-z0-9]$"));
    for (const QWidget* widget : widgets) {
        if (!widget->objectName().startsWith("TAB_") && !widget->objectName().startsWith("qt_"))
            found << widget->objectName();
    }
    const auto labels = m_window->findChildren<QLabel*>();
    for (const QLabel* label : labels) {
        if (!found.contains(label->objectName()))
            found << label->objectName();
    }
    found << "textBrowser";
    expected.sort();
    found.sort();
    QCOMPARE(found, expected);
}

void tst_form::theWindow_hasItsSizeTitleAndFont()
{
    QCOMPARE(m_window->size(), QSize(1024, 600));
    QCOMPARE(m_window->windowTitle(), QString("TAVO-QR9 Verifier"));
    QCOMPARE(m_window->objectName(), QString("MainWindow"));
    QCOMPARE(m_window->font().pointSize(), 11);
    QCOMPARE(m_ui.pushButton_EXIT->font().bold(), true);
    QCOMPARE(m_ui.pushButton_EXIT->font().pointSize(), 11);
    QCOMPARE(m_ui.pushButton_POSITION_Z->font().pointSize(), 10);
    QCOMPARE(m_ui.plainTextEdit_RECEIVED_CMD_CONTROLLER->font().pointSize(), 10);
    QCOMPARE(m_ui.tableWidget_SLIDE->font().pointSize(), 8);
}

void tst_form::atStart_theTabsAreOnQC1AndTheSlideIs2Channel()
{
    QCOMPARE(m_ui.tabWidget_CONTROLLER->currentIndex(), 2);
    QCOMPARE(m_ui.tabWidget_CONTROLLER->currentWidget(), m_ui.TAB_QC1);
    QCOMPARE(m_ui.comboBox_SLIDE->currentIndex(), 1);
    QCOMPARE(m_ui.comboBox_SLIDE->maxVisibleItems(), 10);
}

void tst_form::theTabs_areInOrder()
{
    QStringList texts;
    for (int i = 0; i < m_ui.tabWidget_CONTROLLER->count(); ++i)
        texts << m_ui.tabWidget_CONTROLLER->tabText(i);
    QCOMPARE(texts, QStringList({ "Stage", "Light", "  QC1  ", "  QC2  ", "Option", "Debug" }));
}

void tst_form::theSlideList_isInOrder()
{
    QStringList texts;
    for (int i = 0; i < m_ui.comboBox_SLIDE->count(); ++i)
        texts << m_ui.comboBox_SLIDE->itemText(i);
    QCOMPARE(texts,
        QStringList(
            { "1-Channel", "2-Channel", "3-Channel", "8-Channel", "Reusable", "Validation", "Prisma Max" }));
}

void tst_form::theSlideMap_hasNoHeadersBarsEditsOrSelection()
{
    const QTableWidget* map = m_ui.tableWidget_SLIDE;
    QVERIFY(map->horizontalHeader()->isHidden());
    QVERIFY(map->verticalHeader()->isHidden());
    QCOMPARE(map->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QCOMPARE(map->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QCOMPARE(map->editTriggers(), QAbstractItemView::EditTriggers(QAbstractItemView::NoEditTriggers));
    QCOMPARE(map->selectionMode(), QAbstractItemView::NoSelection);
}

void tst_form::workflowButtons_areViolet()
{
    const QString violet = "font: 11pt \"Sans Serif\";\nbackground-color: rgb(170, 85, 255);";
    QCOMPARE(m_ui.pushButton_AUTOFOCUS->styleSheet(), violet);
    QCOMPARE(m_ui.pushButton_REFERENCE_AUTOFOCUS_SET->styleSheet(), violet);
    QCOMPARE(m_ui.pushButton_REFERENCE_Z->styleSheet(), violet);
    QCOMPARE(m_ui.pushButton_REFERENCE_Z_SLOPE->styleSheet(), violet);
    QCOMPARE(m_ui.plainTextEdit_RECEIVED_CMD_CONTROLLER->styleSheet(),
        QString("background-color: rgb(255, 255, 255);"));
}

void tst_form::arrowDown_hasAPictureForEachState()
{
    const struct {
        const char* state;
        const char* picture;
    } states[] = {
        { "QPushButton", ":/CountMenu/Live/down.png" },
        { "QPushButton:pressed", ":/CountMenu/Live/down_pressed.png" },
        { "QPushButton:disabled", ":/CountMenu/Live/down_disabled.png" },
    };
    QString sheet = m_ui.pushButton_MVN_Z->styleSheet();
    sheet.remove(QRegularExpression("\\s"));
    for (const auto& state : states) {
        const QString rule = QString("%1{border-image:url(%2);}").arg(state.state, state.picture);
        QVERIFY2(sheet.contains(rule), qPrintable(sheet));
        QVERIFY(!QFile::exists(state.picture)); // so that the style draws none
    }
}

void tst_form::buttons_takeNoFocus()
{
    const auto buttons = m_window->findChildren<QPushButton*>();
    for (const QPushButton* button : buttons)
        QCOMPARE(button->focusPolicy(), Qt::NoFocus);
}

void tst_form::editableFields_takeAClickAndStandRight()
{
    int fields = 0;
    for (const FormRow& row : kForm) {
        auto* widget = m_window->findChild<QWidget*>(row.name);
        const auto* line = qobject_cast<QLineEdit*>(widget);
        const auto* box = qobject_cast<QAbstractSpinBox*>(widget);
        if (box == nullptr && (line == nullptr || line->isReadOnly()))
            continue;
        ++fields;
        QVERIFY2(widget->focusPolicy() == Qt::ClickFocus, row.name);
        // The one text among the numbers is what is typed at the console.
        if (widget != m_ui.lineEdit_SEND_CMD_CONTROLLER)
            QVERIFY2((line != nullptr ? line->alignment() : box->alignment()) & Qt::AlignRight, row.name);
    }
    QCOMPARE(fields, 25);
}

void tst_form::windowWithAName_keepsIt()
{
    MessageBoxWatcher watcher;
    QMainWindow window;
    window.setObjectName("Another");
    Ui::MainWindow ui;
    ui.setupUi(&window);
    QCOMPARE(window.objectName(), QString("Another"));
    QCOMPARE(window.windowTitle(), QString("TAVO-QR9 Verifier"));
}

QTEST_MAIN(tst_form)
#include "tst_form.moc"
