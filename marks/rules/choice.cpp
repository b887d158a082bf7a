#include "marks/rules/choice.h"

#include <algorithm>

namespace marks {

bool operator==(const Choice &one, const Choice &other)
{
    const auto areSame = [](const ChosenFile &file, const ChosenFile &beside) {
        return file.source == beside.source && file.target == beside.target;
    };
    return one.order == other.order && one.orderNumber == other.orderNumber &&
           one.folders == other.folders && one.shotDate == other.shotDate &&
           one.fileTime == other.fileTime && one.fileWord == other.fileWord &&
           std::equal(one.files.cbegin(), one.files.cend(), other.files.cbegin(),
                      other.files.cend(), areSame);
}

} // namespace marks
