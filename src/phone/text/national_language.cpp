#include "phone/text/national_language.h"

namespace phone {
namespace {

// The main tables, where they differ from the default one (A.3.1, A.3.3).
constexpr Code turkishMain[] = {
    {0x04, u'€'}, {0x07, u'ı'}, {0x0B, u'Ğ'}, {0x0C, u'ğ'}, {0x1C, u'Ş'}, {0x1D, u'ş'}, {0x40, u'İ'}, {0x60, u'ç'},
};
constexpr Code portugueseMain[] = {
    {0x04, u'ê'}, {0x06, u'ú'}, {0x07, u'í'}, {0x08, u'ó'}, {0x09, u'ç'}, {0x0B, u'Ô'}, {0x0C, u'ô'},  {0x0E, u'Á'},
    {0x0F, u'á'}, {0x12, u'ª'}, {0x13, u'Ç'}, {0x14, u'À'}, {0x15, u'∞'}, {0x16, u'^'}, {0x17, u'\\'}, {0x18, u'€'},
    {0x19, u'Ó'}, {0x1A, u'|'}, {0x1C, u'Â'}, {0x1D, u'â'}, {0x1E, u'Ê'}, {0x24, u'º'}, {0x40, u'Í'},  {0x5B, u'Ã'},
    {0x5C, u'Õ'}, {0x5D, u'Ú'}, {0x60, u'~'}, {0x7B, u'ã'}, {0x7C, u'õ'}, {0x7D, u'`'},
};

// The extension tables (A.2.1, A.2.2, A.2.3).
constexpr Code turkishExtension[] = {
    {0x0A, u'\f'}, {0x14, u'^'}, {0x28, u'{'}, {0x29, u'}'}, {0x2F, u'\\'}, {0x3C, u'['},
    {0x3D, u'~'},  {0x3E, u']'}, {0x40, u'|'}, {0x47, u'Ğ'}, {0x49, u'İ'},  {0x53, u'Ş'},
    {0x63, u'ç'},  {0x65, u'€'}, {0x67, u'ğ'}, {0x69, u'ı'}, {0x73, u'ş'},
};
constexpr Code spanishExtension[] = {
    {0x09, u'ç'}, {0x0A, u'\f'}, {0x14, u'^'}, {0x28, u'{'}, {0x29, u'}'}, {0x2F, u'\\'}, {0x3C, u'['},
    {0x3D, u'~'}, {0x3E, u']'},  {0x40, u'|'}, {0x41, u'Á'}, {0x49, u'Í'}, {0x4F, u'Ó'},  {0x55, u'Ú'},
    {0x61, u'á'}, {0x65, u'€'},  {0x69, u'í'}, {0x6F, u'ó'}, {0x75, u'ú'},
};
constexpr Code portugueseExtension[] = {
    {0x05, u'ê'}, {0x09, u'ç'}, {0x0A, u'\f'}, {0x0B, u'Ô'}, {0x0C, u'ô'}, {0x0E, u'Á'}, {0x0F, u'á'}, {0x12, u'Φ'},
    {0x13, u'Γ'}, {0x14, u'^'}, {0x15, u'Ω'},  {0x16, u'Π'}, {0x17, u'Ψ'}, {0x18, u'Σ'}, {0x19, u'Θ'}, {0x1F, u'Ê'},
    {0x28, u'{'}, {0x29, u'}'}, {0x2F, u'\\'}, {0x3C, u'['}, {0x3D, u'~'}, {0x3E, u']'}, {0x40, u'|'}, {0x41, u'À'},
    {0x49, u'Í'}, {0x4F, u'Ó'}, {0x55, u'Ú'},  {0x5B, u'Ã'}, {0x5C, u'Õ'}, {0x61, u'Â'}, {0x65, u'€'}, {0x69, u'í'},
    {0x6F, u'ó'}, {0x75, u'ú'}, {0x7B, u'ã'},  {0x7C, u'õ'}, {0x7F, u'â'},
};

}  // namespace

SeptetTables tablesOf(std::uint8_t lockingShift, std::uint8_t singleShift) {
  SeptetTables tables;
  if (lockingShift == national_language::turkish) tables.instead = turkishMain;
  if (lockingShift == national_language::portuguese) tables.instead = portugueseMain;
  if (singleShift == national_language::turkish) tables.extension = turkishExtension;
  if (singleShift == national_language::spanish) tables.extension = spanishExtension;
  if (singleShift == national_language::portuguese) tables.extension = portugueseExtension;
  return tables;
}

}  // namespace phone
