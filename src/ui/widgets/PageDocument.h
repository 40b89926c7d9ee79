#pragma once

class QUndoStack;

/// What the File and Edit menus act on while its page is in front.
class PageDocument
{
public:
    virtual ~PageDocument() = default;

    virtual void newDocument() = 0;
    virtual void openDocument() = 0;
    virtual void saveDocument() = 0;
    /// Takes over what is being typed, so that it counts.
    virtual void finishEditing() = 0;
    /// The steps that can be taken back; owned by the document.
    virtual QUndoStack *undoStack() = 0;

protected:
    PageDocument() = default;
    PageDocument(const PageDocument &) = default;
    PageDocument &operator=(const PageDocument &) = default;
};
