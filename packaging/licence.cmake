# The one place that says under which terms the panel is given away. The copyright file and the
# AppStream metadata take their words from here.

set(PANEL_COPYRIGHT_HOLDER "Shuochuan")
set(PANEL_COPYRIGHT_YEARS "2026")

# As the copyright file names it, and as SPDX does.
set(PANEL_LICENCE_NAME "All-rights-reserved")
set(PANEL_LICENCE_SPDX "LicenseRef-proprietary")

# What the copyright file says under that name: each line begins with a blank, an empty line is " .".
set(PANEL_LICENCE_TEXT
" All rights reserved.
 .
 The maker has not chosen a licence yet. Until then nobody is granted a right to
 use, copy, change or pass on this program beyond what the law gives or the maker
 has agreed to in writing.")
