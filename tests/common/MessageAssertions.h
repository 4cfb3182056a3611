#pragma once

#include <gtest/gtest.h>

#include "support/ScriptedUiServices.h"

// Asserts that `ui` showed exactly the message `expectedText` with box style
// `expectedStyle`
// as its `index`-th message (0-based).
#define EXPECT_UI_MESSAGE(ui, index, expectedText, expectedStyle)                                     \
  do {                                                                               \
    ASSERT_GT((ui).messages.size(), static_cast<size_t>(index)) << "no message " << (index); \
    EXPECT_EQ((ui).messages[(index)].text.toStdString(), std::string(expectedText));         \
    EXPECT_EQ((ui).messages[(index)].style, (expectedStyle));                                \
  } while (0)

// Asserts that `ui` showed exactly one message, `expectedText`, with style `expectedStyle`.
#define EXPECT_ONLY_UI_MESSAGE(ui, expectedText, expectedStyle)          \
  do {                                                  \
    EXPECT_EQ((ui).messages.size(), 1u);                \
    EXPECT_UI_MESSAGE(ui, 0, expectedText, expectedStyle);              \
  } while (0)
