#include "mailclient/win/message_list_view.h"

#include <algorithm>
#include <cwchar>

#include "mailclient/view/collate.h"

namespace mailclient::win {
namespace {

void setState(HWND list, int row, UINT state, UINT mask) {
  LVITEMW item{};
  item.state = state;
  item.stateMask = mask;
  SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}

int nextRow(HWND list, int after, UINT flags) {
  return static_cast<int>(SendMessageW(list, LVM_GETNEXTITEM, static_cast<WPARAM>(after), static_cast<LPARAM>(flags)));
}

}  // namespace

MessageListView::MessageListView(Shell& shell, Hears hears)
    : shell_(shell),
      hears_(std::move(hears)),
      model_({.rowsChanged = [this] { note(rowsStale_); },
              .rowChanged =
                  [this](std::size_t row) {
                    const auto at = static_cast<int>(row);
                    if (list_ && !rowsStale_) SendMessageW(list_, LVM_REDRAWITEMS, row, at);
                  }}) {}

void MessageListView::note(bool& stale) {
  const bool asked = isStale();
  stale = true;
  if (list_ && !asked) PostMessageW(GetParent(list_), listIsStale, 0, 0);
}

void MessageListView::attach(HWND frame, int id) {
  list_ = makeControl(frame, WC_LISTVIEWW, L"Items",
                      WS_TABSTOP | LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS | LVS_SHAREIMAGELISTS, id,
                      WS_EX_CLIENTEDGE);
  SendMessageW(list_, LVM_SETEXTENDEDLISTVIEWSTYLE, 0,
               LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_HEADERDRAGDROP | LVS_EX_INFOTIP);
  SendMessageW(list_, LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(Icons::instance().list()));
}

void MessageListView::detach() {
  list_ = nullptr;
  model_.show(nullptr, model_.sorting());
}

String MessageListView::settingName() const {
  const std::string kind = std::to_string(static_cast<int>(kind_));
  return u"columns." + String(kind.begin(), kind.end());
}

// "column descending width width width" - what cannot be read leaves the folder's own ways.
void MessageListView::show(const std::shared_ptr<Folder>& folder) {
  if (model_.folder()) rememberColumns();
  kind_ = folderKind(shell_.client().store(), *folder);
  const Column first = firstSortOf(kind_);
  Sorting sorting{first, first != Column::FullName};
  int column = 0;
  int descending = 0;
  if (std::swscanf(wide(shell_.setting(settingName())), L"%d %d", &column, &descending) == 2)
    for (const ColumnInfo& info : columnsOf(kind_))
      if (static_cast<int>(info.column) == column) sorting = {info.column, descending != 0};
  makeColumns();
  model_.show(folder, sorting);
  setState(list_, -1, 0, LVIS_SELECTED | LVIS_FOCUSED);
  applyRows();
  SendMessageW(list_, LVM_ENSUREVISIBLE, 0, FALSE);
  showSorting();
}

void MessageListView::makeColumns() {
  while (SendMessageW(list_, LVM_DELETECOLUMN, 0, 0)) {
  }
  columns_.clear();
  int widths[4] = {};
  std::swscanf(wide(shell_.setting(settingName())), L"%*d %*d %d %d %d %d", &widths[0], &widths[1], &widths[2],
               &widths[3]);
  for (const ColumnInfo& info : columnsOf(kind_)) {
    const std::size_t at = columns_.size();
    String title(info.title);
    LVCOLUMNW column{};
    column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
    column.pszText = reinterpret_cast<wchar_t*>(title.data());
    column.cx = at < 4 && widths[at] > 0 ? scaled(widths[at]) : scaled(info.width);
    column.iSubItem = static_cast<int>(at);
    SendMessageW(list_, LVM_INSERTCOLUMNW, at, reinterpret_cast<LPARAM>(&column));
    columns_.push_back(info.column);
  }
}

void MessageListView::rememberColumns() {
  const Sorting& sorting = model_.sorting();
  wchar_t text[100];
  int length = std::swprintf(text, 100, L"%d %d", static_cast<int>(sorting.column), sorting.descending ? 1 : 0);
  for (std::size_t i = 0; i < columns_.size() && i < 4 && length > 0; ++i) {
    const auto pixels = static_cast<int>(SendMessageW(list_, LVM_GETCOLUMNWIDTH, i, 0));
    length +=
        std::swprintf(text + length, static_cast<std::size_t>(100 - length), L" %d", MulDiv(pixels, 96, scaled(96)));
  }
  shell_.putSetting(settingName(), String(view(text)));
}

void MessageListView::showSorting() {
  const auto header = reinterpret_cast<HWND>(SendMessageW(list_, LVM_GETHEADER, 0, 0));
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    HDITEMW item{};
    item.mask = HDI_FORMAT;
    SendMessageW(header, HDM_GETITEMW, i, reinterpret_cast<LPARAM>(&item));
    item.fmt &= ~(HDF_SORTUP | HDF_SORTDOWN);
    if (columns_[i] == model_.sorting().column) item.fmt |= model_.sorting().descending ? HDF_SORTDOWN : HDF_SORTUP;
    SendMessageW(header, HDM_SETITEMW, i, reinterpret_cast<LPARAM>(&item));
  }
}

const Message* MessageListView::messageAt(int row) const {
  const auto& rows = model_.rows();
  return row >= 0 && static_cast<std::size_t>(row) < rows.size() ? rows[static_cast<std::size_t>(row)].get() : nullptr;
}

// The control keeps its selection by row; the model knows the items.
void MessageListView::applyRows() {
  applying_ = true;
  rowsStale_ = false;
  const auto& rows = model_.rows();
  SendMessageW(list_, LVM_SETITEMCOUNT, rows.size(), LVSICF_NOSCROLL);
  for (int row = nextRow(list_, -1, LVNI_SELECTED); row >= 0; row = nextRow(list_, row, LVNI_SELECTED))
    if (!model_.isSelected(rows[static_cast<std::size_t>(row)])) setState(list_, row, 0, LVIS_SELECTED);
  for (std::size_t row = 0; model_.hasSelection() && row < rows.size(); ++row)
    if (model_.isSelected(rows[row])) setState(list_, static_cast<int>(row), LVIS_SELECTED, LVIS_SELECTED);
  // The arrow keys go on from the item that they were at.
  const int chosen = nextRow(list_, -1, LVNI_SELECTED);
  if (chosen >= 0 && nextRow(list_, -1, LVNI_FOCUSED | LVNI_SELECTED) < 0) setFocus(chosen);
  InvalidateRect(list_, nullptr, FALSE);
  applying_ = false;
}

// Rows that have moved meanwhile are not those that the user sees: what was selected stays so then.
void MessageListView::takeSelection() {
  note(selectionStale_);
  if (rowsStale_) return;
  std::vector<MessagePtr> chosen;
  for (int row = nextRow(list_, -1, LVNI_SELECTED); row >= 0; row = nextRow(list_, row, LVNI_SELECTED))
    if (messageAt(row)) chosen.push_back(model_.rows()[static_cast<std::size_t>(row)]);
  model_.select(std::move(chosen));
}

void MessageListView::catchUp() {
  selectionStale_ = false;
  if (rowsStale_) applyRows();
  hears_.selectionChanged();
}

void MessageListView::setFocus(int row) {
  setState(list_, row, LVIS_FOCUSED, LVIS_FOCUSED);
  SendMessageW(list_, LVM_SETSELECTIONMARK, 0, row);
}

void MessageListView::focusRow(std::size_t row) {
  setFocus(static_cast<int>(row));
  SendMessageW(list_, LVM_ENSUREVISIBLE, row, FALSE);
}

void MessageListView::select(const std::vector<MessagePtr>& messages) {
  model_.select(messages);
  applyRows();
  if (messages.empty()) return;
  if (const auto row = model_.rowOf(messages.front())) focusRow(*row);
}

void MessageListView::selectAll() {
  setState(list_, -1, LVIS_SELECTED, LVIS_SELECTED);
  takeSelection();
}

void MessageListView::fill(NMLVDISPINFOW& wanted) const {
  const Message* const message = messageAt(wanted.item.iItem);
  if (!message) return;
  if (wanted.item.mask & LVIF_IMAGE) wanted.item.iImage = imageOf(artOf(*message));
  const auto column = static_cast<std::size_t>(wanted.item.iSubItem);
  if (!(wanted.item.mask & LVIF_TEXT) || column >= columns_.size() || wanted.item.cchTextMax < 1) return;
  const String text = cellText(*message, columns_[column], [this](Date utc) { return shell_.timeText(utc); });
  lstrcpynW(wanted.item.pszText, wide(text), wanted.item.cchTextMax);
}

LRESULT MessageListView::paint(NMLVCUSTOMDRAW& what) const {
  if (what.nmcd.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
  if (what.nmcd.dwDrawStage != CDDS_ITEMPREPAINT) return CDRF_DODEFAULT;
  const Message* const message = messageAt(static_cast<int>(what.nmcd.dwItemSpec));
  if (!message || !message->unread) return CDRF_DODEFAULT;
  SelectObject(what.nmcd.hdc, boldFont());
  return CDRF_NEWFONT;
}

// Typed letters find the next row whose first column begins with them.
LRESULT MessageListView::findRow(const NMLVFINDITEMW& sought) const {
  const auto& rows = model_.rows();
  if (!(sought.lvfi.flags & (LVFI_STRING | LVFI_PARTIAL)) || rows.empty() || columns_.empty()) return -1;
  const StringView start = view(sought.lvfi.psz);
  const auto from = static_cast<std::size_t>(std::max(sought.iStart, 0));
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const std::size_t row = (from + i) % rows.size();
    if (beginsAlike(cellText(*rows[row], columns_.front(), [](Date) { return String(); }), start))
      return static_cast<LRESULT>(row);
  }
  return -1;
}

LRESULT MessageListView::onNotify(const NMHDR& header) {
  auto* const any = const_cast<NMHDR*>(&header);  // answers are written into what follows the header
  switch (header.code) {
    case LVN_GETDISPINFOW:
      fill(*reinterpret_cast<NMLVDISPINFOW*>(any));
      return 0;
    case NM_CUSTOMDRAW:
      return paint(*reinterpret_cast<NMLVCUSTOMDRAW*>(any));
    case LVN_ODFINDITEMW:
      return findRow(*reinterpret_cast<NMLVFINDITEMW*>(any));
    case LVN_ITEMCHANGED:
    case LVN_ODSTATECHANGED:
      if (!applying_) takeSelection();
      return 0;
    case LVN_COLUMNCLICK: {
      const auto column = static_cast<std::size_t>(reinterpret_cast<NMLISTVIEW*>(any)->iSubItem);
      const auto infos = columnsOf(kind_);
      if (column >= infos.size()) return 0;
      model_.sortBy(infos[column].column, infos[column].newestFirst);
      applyRows();
      showSorting();
      return 0;
    }
    case LVN_ITEMACTIVATE:
      hears_.open();
      return 0;
    case LVN_KEYDOWN:
      if (reinterpret_cast<NMLVKEYDOWN*>(any)->wVKey == VK_DELETE) hears_.remove();
      return 0;
    default:
      return 0;
  }
}

}  // namespace mailclient::win
