/* Compiled as C: the public header must stay valid C. */
#include <stddef.h>

#include "koradata.h"

/* Returns the size koradata reports for this thread's error text. */
uint32_t kora_c_last_error_size(void) { return kora_get_last_error_string(NULL, 0); }

/* Opens a path through the C interface; 0 on failure. */
uint64_t kora_c_open(const char* path) { return kora_open(path, 0u); }
