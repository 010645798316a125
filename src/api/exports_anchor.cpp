// The shared library is made of kora_api, linked whole; this file only gives it a source.
