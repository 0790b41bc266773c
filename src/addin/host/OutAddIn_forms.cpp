// The add-in's own forms.

#include "addin/host/OutAddIn.h"
#include "addin/platform/on_error.h"

namespace addin {
namespace {

// Shows the form that `field` holds while it is open; a new one when there is none.
template <class T>
bool showIn(Ref<T>& field, FormModality modality) {
  if (!field) {
    field = make<T>();
    field->whenUnloaded = [&field] { field = nullptr; };  // the fields outlive their forms: see UnloadForms
  }
  return field->Show(modality);
}

}  // namespace

bool OutAddIn::ShowWizard(FormModality modality) { return showIn(m_frmwizard, modality); }

void OutAddIn::ShowAbout() { showIn(m_frmabout, FormModality::Modeless); }

void OutAddIn::UnloadForms() noexcept {
  onErrorResumeNext(
      [&] {
        if (m_frmwizard) m_frmwizard->Unload();
      },
      [&] { m_frmwizard = nullptr; },
      [&] {
        if (m_frmabout) m_frmabout->Unload();
      },
      [&] { m_frmabout = nullptr; });
}

}  // namespace addin
