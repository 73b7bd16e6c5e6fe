// What a screen reader finds in a form's canvas: its shown controls, its described items, its last announcement.
//
// Call DescribeFormsToScreenReaders() once. Labels, pictures with a tooltip and whatever can be clicked have their
// name there; pressing one, or a described item, queues a click at its centre. Menus come with the toolkit.
#pragma once

#include "base/Text.h"

namespace quarnel {

class FormCanvas;

void DescribeFormsToScreenReaders();

/// Lets a screen reader speak `text`.
void Announce(FormCanvas& canvas, const Text& text);

} // namespace quarnel
