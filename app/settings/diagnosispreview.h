#pragma once

#include "app/diagnosis/diagnosis.h"
#include "widgets/windows/framelessdialog.h"

/// What a diagnosis holds, file by file, before it is saved: accepted when the user wants it.
class DiagnosisPreview : public FramelessDialog
{
    Q_OBJECT

public:
    DiagnosisPreview(QWidget *parent, const QVector<DiagnosisFile> &files);
};
