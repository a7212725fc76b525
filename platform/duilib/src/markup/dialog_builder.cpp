#include "duilib/dialog_builder.h"

#include "base/path.h"
#include "base/text.h"
#include "duilib/container.h"
#include "duilib/control.h"
#include "duilib/resource_manager.h"
#include "foundation/report.h"
#include "foundation/xml_source.h"
#include "markup/markup_file.h"

namespace DuiLib {

// Builds the controls of one layout file.
class MarkupBuilder {
public:
    MarkupBuilder(std::shared_ptr<const MarkupFile> file, IDialogBuilderCallback* callback)
        : m_file(std::move(file)), m_callback(callback) {}

    std::unique_ptr<CControlUI> Build() {
        for (const auto& [id, font] : m_file->fonts) CResourceManager::GetInstance()->SetFont(id, font);
        return BuildElement(m_file->root);
    }

private:
    std::string At(int line) const { return m_file->path + ":" + std::to_string(line) + ": "; }

    std::unique_ptr<CControlUI> BuildElement(const MarkupElement& element) {
        std::unique_ptr<CControlUI> control(element.make ? element.make() : nullptr);
        if (!control && m_callback) control.reset(m_callback->CreateControl(base::WideFromUtf8(element.name)));
        if (!control) throw XmlError(At(element.line) + "unknown element <" + element.name + ">");
        if (element.make) {
            ApplyShared(*control, element);
        } else {
            for (const AttributeList::Attribute& attribute : element.given.attributes) {
                control->SetAttribute(attribute.name.Get(), attribute.text.Get());
            }
        }
        AddChildren(*control, element);
        return control;
    }

    // The control keeps the element's own list, not copies of its attributes.
    void ApplyShared(CControlUI& control, const MarkupElement& element) const {
        control.m_given = std::shared_ptr<const AttributeList>(m_file, &element.given);
        for (std::size_t i = 0; i < element.places.size(); ++i) {
            const AttributeList::Attribute& attribute = element.given.attributes[i];
            if (!attribute.ApplyTo(control) && !std::exchange(element.places[i].reported, true)) {
                Warn(element, attribute, element.places[i].line);
            }
        }
    }

    void Warn(const MarkupElement& element, const AttributeList::Attribute& attribute, int line) const {
        const std::string name = base::Utf8FromWide(attribute.name.Get());
        const std::string reason = attribute.rule ? "<" + element.name + "> cannot have " + name + "=\"" +
                                                        base::Utf8FromWide(attribute.text.Get()) + "\""
                                                  : "unknown attribute \"" + name + "\"";
        Report(At(line) + "warning: " + reason);
    }

    void AddChildren(CControlUI& control, const MarkupElement& element) {
        if (element.children.empty()) return;
        auto* const container = dynamic_cast<CContainerUI*>(&control);
        if (!container) {
            throw XmlError(At(element.children.front().line) + "<" + element.name + "> cannot have content");
        }
        for (const MarkupElement& childElement : element.children) {
            std::unique_ptr<CControlUI> child = BuildElement(childElement);
            if (!container->Add(child.get())) {
                throw XmlError(At(childElement.line) + "<" + element.name + "> refuses <" + childElement.name + ">");
            }
            static_cast<void>(child.release());  // the container has it now
        }
    }

    std::shared_ptr<const MarkupFile> m_file;
    IDialogBuilderCallback* m_callback;
};

CControlUI* CDialogBuilder::Create(std::wstring_view file, const wchar_t* type, IDialogBuilderCallback* callback,
                                   CPaintManagerUI*, CControlUI* parent) {
    m_error.Empty();
    try {
        const std::filesystem::path path = CResourceManager::GetInstance()->Resolve(file);
        if (type)
            throw XmlError(base::Utf8FromPath(path) + ":1: resources of type \"" + base::Utf8FromWide(type) +
                           "\" are not supported");
        std::unique_ptr<CControlUI> root = MarkupBuilder(LoadMarkup(path), callback).Build();
        if (parent) {
            auto* const container = dynamic_cast<CContainerUI*>(parent);
            if (!container || !container->Add(root.get())) {
                throw XmlError(base::Utf8FromPath(path) + ":1: the parent is not a container");
            }
        }
        return root.release();
    } catch (const XmlError& error) {
        m_error = CDuiString(base::WideFromUtf8(error.what()));
        Report(error.what());
        return nullptr;
    }
}

}  // namespace DuiLib
