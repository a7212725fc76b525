#include "tree/tree_window.h"

namespace DuiLib {

void NameTable::Add(CControlUI* control) {
    if (control->m_name.IsEmpty()) return;
    CControlUI*& last = m_last[control->m_name.Key()];
    control->m_earlierOfName = last;
    control->m_laterOfName = nullptr;
    if (last) last->m_laterOfName = control;
    last = control;
}

void NameTable::Remove(CControlUI* control) {
    CControlUI* const earlier = control->m_earlierOfName;
    CControlUI* const later = control->m_laterOfName;
    if (later) {
        later->m_earlierOfName = earlier;
    } else {
        const auto entry = m_last.find(control->m_name.Key());
        if (entry == m_last.end() || entry->second != control) return;
        if (earlier) {
            entry->second = earlier;
        } else {
            m_last.erase(entry);
        }
    }
    if (earlier) earlier->m_laterOfName = later;
    control->m_earlierOfName = control->m_laterOfName = nullptr;
}

CControlUI* NameTable::Find(std::wstring_view name) const {
    const SharedText text = SharedText::Find(name);
    const auto entry = text.IsEmpty() ? m_last.end() : m_last.find(text.Key());
    return entry == m_last.end() ? nullptr : entry->second;
}

}  // namespace DuiLib
