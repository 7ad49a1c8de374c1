// SPDX-License-Identifier: MIT
// Nothing of its own: carries the precompiled headers.
