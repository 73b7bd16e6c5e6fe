// What a screen reader finds in a form's canvas: its shown controls, its described items, its last announcement.
//
// Call DescribeFormsToScreenReaders() once. Labels, lights and pictures with a tooltip have their name there, the
// window's title apart, which the window says itself; pressing one that can be clicked, or a described item, queues a
// click at its centre. A form without a frame is a modal dialog. Menus come with the toolkit.
#pragma once

namespace quarnel {

class FormCanvas;

void DescribeFormsToScreenReaders();

/// Lets screen readers know which names, and which lights, have changed since the last time, or since they could first
/// ask for them; then, if wanted, speak the form's announcement.
void TellChanges(FormCanvas& canvas, bool announcement);

} // namespace quarnel
