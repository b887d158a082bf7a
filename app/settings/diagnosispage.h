#pragma once

#include "app/diagnosis/diagnosis.h"
#include "app/settings/settingspage.h"

class QPushButton;

/// 保存诊断信息: gathers what helps whoever is asked, shows it, and writes it where the user says.
class DiagnosisPage : public SettingsPage
{
    Q_OBJECT

public:
    explicit DiagnosisPage(const QString &logFolder);

private:
    void begin();
    void preview(const QVector<DiagnosisFile> &files);
    void tell(const QString &folder, const QString &problem);

    Diagnosis diagnosis_;
    QPushButton *save_;
};
