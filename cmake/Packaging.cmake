# CPack settings come here
