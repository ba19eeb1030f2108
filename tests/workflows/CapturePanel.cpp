#include "tests/workflows/CapturePanel.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QFileInfo>

void CapturePanel::tick(bool bf, bool gfp, bool rfp)
{
    m_desk.widget<QCheckBox>("checkBox_CAPTURE_BF")->setChecked(bf);
    m_desk.widget<QCheckBox>("checkBox_CAPTURE_GFP")->setChecked(gfp);
    m_desk.widget<QCheckBox>("checkBox_CAPTURE_RFP")->setChecked(rfp);
}

void CapturePanel::nameNext(const QString& path)
{
    answerNext([path](QFileDialog& dialog) {
        dialog.setDirectory(QFileInfo(path).path());
        dialog.selectFile(path);
        static_cast<QDialog&>(dialog).done(QDialog::Accepted);
    });
}

void CapturePanel::cancelNext()
{
    answerNext([](QFileDialog& dialog) { dialog.reject(); });
}

void CapturePanel::answerNext(const std::function<void(QFileDialog&)>& answer)
{
    m_desk.boxes.handleNext([answer](QDialog& dialog) {
        auto* files = qobject_cast<QFileDialog*>(&dialog);
        if (files == nullptr) {
            dialog.reject();
            QFAIL("this is no dialog for a file");
        }
        answer(*files);
    });
}
