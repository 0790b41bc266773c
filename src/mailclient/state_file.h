// What a store remembers besides its items, as a text file: lines of a word and fields. Each field is "=" and a text as
// escapeExactly() writes it. Lines that cannot be read are passed over.
//
//   mailclient-state =1
//   store =0123456789ABCDEF0123456789ABCDEF
//   next =257
//   form =IPM.Note.TxtMsg =TxtMsg =TxtMsg =2
//   button =30007 =Menu_Bar =Caption =Tag =Tooltip =Parameter =OnAction =1757 =3 =0 =1 =1
//   setting =explorer.place =100_80_1024_700
#pragma once

#include <string>
#include <string_view>

#include "mailclient/persistence.h"

namespace mailclient {

std::string stateFile(const StoreState& state);
// The store's identifier is empty when the file has none.
StoreState readStateFile(std::string_view content);

}  // namespace mailclient
