// Reads one option or attribute of an open PPD, with a default for what is absent.
//
// The choice of an option is the marked one (PPD default or job option), else the option's default
// choice. A null PPD has no options and no attributes. Texts that are returned point into the
// PPD's records, or are the caller's default: copy them before the PPD is closed.
#ifndef TARVO_COMMON_PPD_PPD_OPTION_H_
#define TARVO_COMMON_PPD_PPD_OPTION_H_

#include <cups/ppd.h>

extern "C" {

/// The choice of option `keyword`, or null when there is no such option or choice.
ppd_choice_t* tarvoPpdGetChoice(ppd_file_s* ppd, const char* keyword);

/// The keyword text of the choice of option `keyword`, or `defaultText`.
const char* tarvoPpdGetChoiceAsStrDefault(ppd_file_s* ppd, const char* keyword,
                                          const char* defaultText);

/// `atoi` of the choice of option `keyword` ("3mm" gives 3, a non-number 0), or `defaultValue`.
int tarvoPpdGetChoiceAsIntDefault(ppd_file_s* ppd, const char* keyword, int defaultValue);

/// The choice of option `keyword` as a truth value, or `defaultValue`: 1 for "true" and "yes", 0
/// for "false" and "no" (in any case), else the low 8 bits of its `atoi` as a signed value, so
/// that "256" is false. Any result but 0 means true. Quirk: truth-value-bits.
signed char tarvoPpdGetChoiceAsBoolDefault(ppd_file_s* ppd, const char* keyword,
                                           signed char defaultValue);

/// The value text of attribute `name` with `specifier` (null: any), or `defaultText` when the
/// attribute or its value is absent.
const char* tarvoPpdGetAttrAsStrDefault(ppd_file_s* ppd, const char* name, const char* specifier,
                                        const char* defaultText);

/// `atof` of the value of attribute `name` with `specifier` (null: any), or `defaultValue` when
/// the attribute or its value is absent.
double tarvoPpdGetAttrAsFloatDefault(ppd_file_s* ppd, const char* name, const char* specifier,
                                     double defaultValue);

}  // extern "C"

#endif  // TARVO_COMMON_PPD_PPD_OPTION_H_
