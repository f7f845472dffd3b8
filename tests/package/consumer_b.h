/* The second of the two translation units that include the library's header. */
#ifndef CONSUMER_B_H
#define CONSUMER_B_H

#include <stdint.h>

/* Lays out a surface of the format; returns the format that the layout names, 0 on failure. */
uint32_t format_of_layout(uint32_t format);

#endif
