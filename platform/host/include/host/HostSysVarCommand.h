// System variables on the host's command line. Typing a variable's name at
// "Command: ", or SETVAR and then the name, shows the value and asks for a new one:
//   Enter new value for DIMASZ <2.5000>:
// Enter keeps the value; a value of the wrong type or out of range is refused
// with a line that says what is allowed, and the prompt repeats.
//
// The variables: the 78 dimension variables (the active drawing's current
// settings, which is how overrides are made on the command line), the unit
// variables LUNITS, LUPREC, AUNITS, AUPREC, ANGBASE, ANGDIR, the associativity
// variables DIMASO and DIMASSOC, and the host's DIMSTYLE, CMDACTIVE (read only),
// CANNOSCALE, LWUNITS and MEASUREMENT. Every one but CMDACTIVE and LWUNITS needs
// an open drawing.
//
// How values are shown and typed:
//   switches        On / Off; On, Off, 1 or 0 typed
//   integers        within the variable's range
//   distances       in the drawing's linear units (LUNITS, LUPREC)
//   factors         plain numbers, shown with four decimal places
//   angles          in the drawing's angular units (AUNITS, AUPREC)
//   colours         BYBLOCK, BYLAYER or an index 1..255
//   lineweights     -3 default, -2 by block, -1 by layer, or a standard weight
//   arrows          a block or standard arrow name, created when missing; "." is
//                   the default closed filled arrow
//   linetypes, text styles, dimension styles: the name of an existing record
//                   (BYBLOCK for the linetype is the empty setting)
//   texts           the whole line as typed; "." for none
//   DIMDSEP         one character, stored as its code
// Setting DIMSTYLE makes the style current together with its values.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/HostCommandLine.h"

// True when `name` (any case) is one of the variables above.
bool hostIsCommandLineVar(const std::string& name);
// Their names, upper-case, in alphabetical order.
std::vector<std::string> hostCommandLineVarNames();

// The value as the prompt shows it in the active drawing's units ("2.5000",
// "On", "\"Standard\"", "BYBLOCK"); nullopt for an unknown name, or for a
// drawing variable when no drawing is open.
std::optional<std::string> hostVarText(const std::string& name);
// Sets a variable from text as typed. Returns "" when set, otherwise the
// message that says what the variable allows; the value is then unchanged.
std::string hostSetVarFromText(const std::string& name, const std::string& text);

// The prompt for one variable, repeated until a valid value or Enter.
void hostVarPrompt(HostCommandLine& cl, const std::string& name);
// SETVAR: asks for a variable's name ("?" lists variables with their values),
// then prompts for it.
void hostSetVarCommand(HostCommandLine& cl);
