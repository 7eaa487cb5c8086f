#include "diagnostics/Trace.h"

#include <glib.h>

#include <cstdarg>
#include <cstdio>

unsigned char enableDebug = 0;
unsigned char enableWorkaround = 0;

void trace::writeLine(const char *text)
{
    std::puts(text);
}

void trace::writeFormat(const char *format, ...)
{
    va_list values;
    va_start(values, format);
    std::vprintf(format, values);
    va_end(values);
}

void trace::writeGlib(const char *format, ...)
{
    va_list values;
    va_start(values, format);
    char *text = g_strdup_vprintf(format, values);
    va_end(values);
    g_print("%s", text);
    g_free(text);
}
