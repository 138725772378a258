/* The rows in table order, preprocessed by check.sh: type letter and name of each, then @. */
#include "qor/vector_math_rows.h"
#define FUNCTION(t, name, ...) t t##name@
#define STRIDED(t, name, ...) t t##name##I@
QOR_FUNCTION_ROWS(FUNCTION)
QOR_PACK_ROWS(FUNCTION)
QOR_FUNCTION_ROWS(STRIDED)
