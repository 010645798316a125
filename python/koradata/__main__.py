"""python3 -m koradata: the kora command line."""

import sys

from .cli import main

sys.exit(main())
