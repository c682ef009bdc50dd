#include "ppd/ppd_option.h"

#include <strings.h>

#include <cstdlib>

ppd_choice_t* tarvoPpdGetChoice(ppd_file_s* ppd, const char* keyword) {
  if (ppd_choice_t* marked = ppdFindMarkedChoice(ppd, keyword)) return marked;
  ppd_option_t* option = ppdFindOption(ppd, keyword);
  if (option == nullptr) return nullptr;
  return ppdFindChoice(option, option->defchoice);
}

const char* tarvoPpdGetChoiceAsStrDefault(ppd_file_s* ppd, const char* keyword,
                                          const char* defaultText) {
  const ppd_choice_t* choice = tarvoPpdGetChoice(ppd, keyword);
  return choice != nullptr ? choice->choice : defaultText;
}

int tarvoPpdGetChoiceAsIntDefault(ppd_file_s* ppd, const char* keyword, int defaultValue) {
  const ppd_choice_t* choice = tarvoPpdGetChoice(ppd, keyword);
  return choice != nullptr ? std::atoi(choice->choice) : defaultValue;
}

signed char tarvoPpdGetChoiceAsBoolDefault(ppd_file_s* ppd, const char* keyword,
                                           signed char defaultValue) {
  const ppd_choice_t* choice = tarvoPpdGetChoice(ppd, keyword);
  if (choice == nullptr) return defaultValue;
  const char* text = choice->choice;
  if (strcasecmp(text, "true") == 0 || strcasecmp(text, "yes") == 0) return 1;
  if (strcasecmp(text, "false") == 0 || strcasecmp(text, "no") == 0) return 0;
  // Quirk: truth-value-bits. The narrowing is deliberate: "256" is false, "255" is -1.
  return static_cast<signed char>(std::atoi(text));
}

const char* tarvoPpdGetAttrAsStrDefault(ppd_file_s* ppd, const char* name, const char* specifier,
                                        const char* defaultText) {
  const ppd_attr_t* attribute = ppdFindAttr(ppd, name, specifier);
  return attribute != nullptr && attribute->value != nullptr ? attribute->value : defaultText;
}

double tarvoPpdGetAttrAsFloatDefault(ppd_file_s* ppd, const char* name, const char* specifier,
                                     double defaultValue) {
  const ppd_attr_t* attribute = ppdFindAttr(ppd, name, specifier);
  return attribute != nullptr && attribute->value != nullptr ? std::atof(attribute->value)
                                                             : defaultValue;
}
