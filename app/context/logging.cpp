#include "app/context/logging.h"

Q_LOGGING_CATEGORY(lcTessavo, "tessavo")
