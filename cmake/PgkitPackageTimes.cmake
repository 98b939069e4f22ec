# Run by cpack over the files that it is about to pack: they get the time that the environment asks
# for, that of the last change as a rule.
if(DEFINED ENV{SOURCE_DATE_EPOCH})
  execute_process(
    COMMAND find "${CPACK_TEMPORARY_INSTALL_DIRECTORY}"
      -exec touch --no-dereference "--date=@$ENV{SOURCE_DATE_EPOCH}" {} +
    COMMAND_ERROR_IS_FATAL ANY)
endif()
