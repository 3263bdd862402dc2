#ifndef TAPFORGE_SHELL_LOCALE_REPORT_H
#define TAPFORGE_SHELL_LOCALE_REPORT_H

/// Prints on standard output how numbers, dates and currency look in some
/// locales (-check_locale). The locale is afterwards as it was.
void checkSysLocale();

#endif  // TAPFORGE_SHELL_LOCALE_REPORT_H
