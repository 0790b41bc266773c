#include "com/exported_object.h"

#include <memory>
#include <unordered_map>
#include <unordered_set>

#include "com/arguments.h"
#include "com/com_object.h"
#include "com/connection_point.h"
#include "com/enumerators.h"

namespace com {
namespace {

using platform::Access;
using platform::Hold;
using platform::Member;
using platform::NativeObject;
using platform::Ref;
using platform::StringView;
using platform::Variant;

class ExportedObject;

// The faces of this thread's objects. Trivial for the thread and the process: it comes with the first face and goes
// with the last, so that nothing is left to run when a thread or the process ends.
struct Faces {
  std::unordered_map<const NativeObject*, ExportedObject*> byObject;
  std::unordered_set<const IDispatch*> all;
};
thread_local constinit Faces* faces = nullptr;

bool admits(const Member& member, Access access) { return (member.access & static_cast<std::uint8_t>(access)) != 0; }

class ExportedObject final : public DispatchObject<IConnectionPointContainer> {
 public:
  explicit ExportedObject(NativeObject& object) : object_(&object), point_(*this, object) {}

  NativeObject& object() const noexcept { return *object_.get(); }

  STDMETHODIMP GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override {
    const HRESULT unknown = DispatchObject::GetIDsOfNames(reserved, names, count, locale, ids);
    if (unknown == E_POINTER) return unknown;
    if (count == 0 || !names[0]) return E_INVALIDARG;
    return guarded([&] {
      const StringView name(reinterpret_cast<const char16_t*>(names[0]));
      const Member* const member = name.empty() ? nullptr : object().find(name);
      if (member)
        ids[0] = member->dispid;
      else if (platform::sameName(name, u"_NewEnum"))
        ids[0] = DISPID_NEWENUM;
      // The names behind the first are those of arguments, which have none here.
      return ids[0] != DISPID_UNKNOWN && count == 1 ? S_OK : unknown;
    });
  }

  STDMETHODIMP Invoke(DISPID id, REFIID /*reserved*/, LCID /*locale*/, WORD flags, DISPPARAMS* params, VARIANT* result,
                      EXCEPINFO* info, UINT* /*bad*/) override {
    if (result) VariantInit(result);
    const bool put = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
    if (!put && !(flags & (DISPATCH_METHOD | DISPATCH_PROPERTYGET))) return E_INVALIDARG;
    if (const HRESULT hr = checkParams(params, put); FAILED(hr)) return hr;
    // The call may let go of this face. The object then ends at once; its memory stays until the call is over.
    const Hold<NativeObject> object(object_.get());
    return guarded(
        [&] {
          if (id == DISPID_NEWENUM && !put) return handOut(*object, result);
          const Member* const member = object->find(id);
          if (!member) return DISP_E_MEMBERNOTFOUND;
          const Access access = accessOf(flags, *member);
          if (!admits(*member, access)) return DISP_E_MEMBERNOTFOUND;
          return run(*object, *member, access, *params, result);
        },
        info);
  }

  STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints** result) override {
    if (!result) return E_POINTER;
    *result = nullptr;
    return guarded([&] {
      *result = enumerateOne(point_).detach();
      return S_OK;
    });
  }

  STDMETHODIMP FindConnectionPoint(REFIID iid, IConnectionPoint** result) override {
    if (!result) return E_POINTER;
    *result = nullptr;
    // Who has no description of the events asks for IDispatch, and means the only ones there are.
    if (iid != iidOf(object().events()) && iid != IID_IDispatch) return CONNECT_E_NOCONNECTION;
    *result = Ptr<IConnectionPoint>(&point_).detach();
    return S_OK;
  }

 protected:
  ~ExportedObject() override {
    if (!faces) return;
    faces->byObject.erase(object_.get());
    faces->all.erase(this);
    if (faces->all.empty()) delete std::exchange(faces, nullptr);
  }

  void* find(REFIID iid) override {
    if (iid == IID_IConnectionPointContainer && object().events() == platform::Guid{}) return nullptr;
    return DispatchObject::find(iid);
  }

 private:
  static Access accessOf(WORD flags, const Member& member) {
    if ((flags & DISPATCH_PROPERTYPUTREF) && (!(flags & DISPATCH_PROPERTYPUT) || admits(member, Access::Set)))
      return Access::Set;
    if (flags & DISPATCH_PROPERTYPUT) return Access::Let;
    return flags & DISPATCH_METHOD ? Access::Call : Access::Get;
  }

  static HRESULT run(NativeObject& object, const Member& member, Access access, const DISPPARAMS& params,
                     VARIANT* result) {
    IncomingArguments arguments(params);
    Variant value;
    try {
      value = member.run(object, access, arguments.args());
    } catch (...) {
      arguments.tryWriteBack();
      throw;
    }
    arguments.writeBack();
    if (result) toVariant(value, *result);
    return S_OK;
  }

  static HRESULT handOut(NativeObject& collection, VARIANT* result) {
    auto elements = exportedEnumerator(collection);
    if (!result) return S_OK;
    result->vt = VT_UNKNOWN;
    result->punkVal = elements.detach();
    return S_OK;
  }

  Ref<NativeObject> object_;
  ConnectionPoint point_;  // before the object in its end, since it listens there
};

}  // namespace

Ptr<IDispatch> faceOf(NativeObject& object) {
  if (faces)
    if (const auto at = faces->byObject.find(&object); at != faces->byObject.end()) return Ptr<IDispatch>(at->second);
  auto face = makeCom<ExportedObject>(object);
  if (!faces) faces = new Faces;
  faces->byObject[&object] = face.get();
  faces->all.insert(face.get());
  return face;
}

NativeObject* behindFace(IDispatch* dispatch) noexcept {
  return faces && faces->all.contains(dispatch) ? &static_cast<ExportedObject*>(dispatch)->object() : nullptr;
}

}  // namespace com
