"""One module a thing that is derived. Each has a function from the families to {file name: text}."""
