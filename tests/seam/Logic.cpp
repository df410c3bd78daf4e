// Stands for any file of the logic. Compiles as it is; when it asks for the toolkit it must not, because
// nothing that the logic links leads to one.
#ifdef ASKS_FOR_TOOLKIT
#include <QString>
#endif

#include "window/WVeltrane.h"
