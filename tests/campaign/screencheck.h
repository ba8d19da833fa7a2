#pragma once

#include "../mainwindow/matrixview.h"

#include <QString>

/*! Judges whether the window shows what the tool holds. */
class ScreenCheck
{
public:
    /*! \a window is new and outlives this object. */
    explicit ScreenCheck(const MainWindow &window);

    /*! The model was changed by what came, and the window follows only at the end of a download. */
    void changedBehindScreen() { m_isStale = true; }
    /*! The window has been drawn anew by a download or a file. */
    void drawnAnew();
    const MatrixView &matrix() const { return m_matrix; }

    /*! What is wrong while no dialog is open; empty if nothing is. */
    QString check();
    /*! How often the matrix was compared. */
    int comparisons() const { return m_comparisons; }

private:
    void readOutput();
    QString checkButtons() const;
    QString checkRows() const;
    QString checkLabels();
    QString checkPorts() const;
    const OutputPortRecord &shown() const;

    const MainWindow &m_window;
    MatrixView m_matrix;
    int m_output = 0;
    bool m_isStale = false;
    bool m_hasLooseLabels = false;
    int m_comparisons = 0;
};
