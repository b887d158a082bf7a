#include "fileimport/window/importmarks.h"

#include "fileimport/rules/importchoices.h"
#include "fileimport/window/importfilepanel.h"
#include "fileimport/window/importfiletablemodel.h"
#include "fileimport/window/importordertablemodel.h"
#include "fileimport/window/orderfilechooser.h"

ImportMarks::ImportMarks(QWidget *window, const Parts &parts)
    : ChoiceMarking(window, parts.bar, [this, orders = parts.orders] {
        return importchoices::choicesOf(orders->orders(), mode_);
    })
{
    connect(parts.orders, &QAbstractItemModel::modelReset, this, &ImportMarks::refresh);
    connect(parts.chooser, &OrderFileChooser::filesChanged, this, &ImportMarks::refresh);
    connect(this, &ImportMarks::marked, parts.files, &ImportFileTableModel::setMarks);
    connect(this, &ImportMarks::counted, parts.filePanel, &ImportFilePanel::setMarkCounts);
    connect(this, &ImportMarks::skipped, parts.chooser, &OrderFileChooser::leaveOut);
    connect(this, &ImportMarks::renamed, parts.chooser, &OrderFileChooser::rename);
}

void ImportMarks::setMode(ImportMode mode)
{
    mode_ = mode;
    setRenaming(mode == ImportMode::Originals);
}
