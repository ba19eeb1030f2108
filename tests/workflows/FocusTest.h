#pragma once

#include "tests/workflows/Desk.h"

/// A test of the focus search: each has a desk of its own, with a field of cells under the objective and the
/// Stage page in front.
class FocusTest : public QObject {
    Q_OBJECT

protected:
    /// Presses AF and waits for the run's box to have been answered.
    bool run();
    /// The same for the fine run alone, around the reference, which has no button.
    bool runFine();
    /// Ticks the box for debug output, and gives this folder when the next run asks for one.
    void watchInto(const QString& folder);
    /// Position behind the last log line of a step; 0 where there is none.
    int stored(const QString& label) const;

    std::unique_ptr<Desk> m_desk;

protected slots:
    void init();
    void cleanup();

private:
    int boxesOfARun();
};

/// Lines that a run sends to the board.
namespace focus_lines {

inline const QString kPos = "$Z#STAGE POS";
inline const QString kRun = "$Z#STAGE RUN";

QString step(int size);
QString direction(const char* name);
QString absolute(int position);
QStringList repeated(const QString& line, int count);

} // namespace focus_lines
