#compdef pgtool
# Completion of pgtool's commands and options. Made by "pgtool documentation zsh".
local -a commands
commands=(
  'dump:print data sets as text, a line per element'
  'json:write data sets as DICOM JSON'
  'scan:list the data sets below directories, a row for each'
  'image:make a picture of a frame'
  'set:change values of data sets'
  'delete:remove elements of data sets'
  'anonymize:remove from data sets whom they are about'
  'save:write a data set in another encoding'
  'from-json:make files of DICOM JSON'
  'disc:make a medium of files, folders and other media'
  'browse:list what a DICOMDIR refers to'
  'mkdir:make the DICOMDIR of a directory'
  'check:tell whether files may be on a medium'
  'verify:check a medium\: its DICOMDIR, and its files against it'
  'tags:look elements up in the dictionary'
  'uid:look UIDs up'
  'modality:explain modalities'
  'profiles:list the media application profiles'
  'documentation:print the manual page, or what completes commands in a shell'
)
if ((CURRENT == 2)); then
  _describe command commands
  return
fi
shift words
((CURRENT--))
case $words[1] in
  dump)
    _arguments \
      '*-r[work on the files in directories, too]' \
      '*--recursive[work on the files in directories, too]' \
      '*--files-from[work on the files that a file names, one on each line; - is the standard input]:LIST:_files' \
      '*-t[print only this element, wherever it is, or the one that a path leads to; may be repeated (in JSON with the sequences around it and the character set)]:TAG:_files' \
      '*--tag[print only this element, wherever it is, or the one that a path leads to; may be repeated (in JSON with the sequences around it and the character set)]:TAG:_files' \
      '*--json[print DICOM JSON, as the command json does]' \
      '*--full[print long values completely]' \
      '*--edition[the tables to answer by\: those of today'\''s standard behind the built-in ones (the default), or the built-in ones of 2011 alone]:value:(current built-in)' \
      '*--utf8[texts are UTF-8, whatever the character set of the file (the default)]' \
      '*--raw[texts are the bytes of the file, as they stand]' \
      '*--load-limit[load values shorter than N bytes while opening; the others are read when they are printed, so the text is the same (default 4096)]:N:_files' \
      '*--flags[open flags, a sum of 0x01 (leave the fragments of encapsulated pixel data unindexed), 0x200 (items of UN sequences keep the surrounding encoding), 0x400 (they are inspected for it), and for a file without meta information 0x08 (explicit VR), 0x10 (implicit VR), 0x20 (little endian), 0x40 (big endian)]:N:_files' \
      '--help[explain the command]' \
      '*:file:_files'
    ;;
  json)
    _arguments \
      '*-r[work on the files in directories, too]' \
      '*--recursive[work on the files in directories, too]' \
      '*--files-from[work on the files that a file names, one on each line; - is the standard input]:LIST:_files' \
      '*-o[the file to write (default\: the standard output)]:OUT:_files' \
      '*--output[the file to write (default\: the standard output)]:OUT:_files' \
      '*--bulk[values of more than N stored bytes become a BulkDataURI, the file with their offset and length (0\: every value that may)]:N:_files' \
      '*--edition[the tables to answer by\: those of today'\''s standard behind the built-in ones (the default), or the built-in ones of 2011 alone]:value:(current built-in)' \
      '*--utf8[texts are UTF-8, whatever the character set of the file (the default)]' \
      '*--raw[texts are the bytes of the file, as they stand]' \
      '--help[explain the command]' \
      '*:file:_files'
    ;;
  scan)
    _arguments \
      '*-r[work on the files in directories, too]' \
      '*--recursive[work on the files in directories, too]' \
      '*--files-from[work on the files that a file names, one on each line; - is the standard input]:LIST:_files' \
      '*--tags[the columns behind the path\: names, tags and paths with commas between (default PatientID,PatientName,StudyDate,Modality,StudyInstanceUID,SeriesInstanceUID,SOPInstanceUID)]:LIST:_files' \
      '*-t[one more column; may be repeated]:TAG:_files' \
      '*--tag[one more column; may be repeated]:TAG:_files' \
      '*--format[comma-separated values with a line of names (the default), a JSON object on each line, or a table for people]:value:(csv jsonl table)' \
      '*-j[read N files at the same time (default\: one for each processor)]:N:_files' \
      '*--jobs[read N files at the same time (default\: one for each processor)]:N:_files' \
      '*--edition[the tables to answer by\: those of today'\''s standard behind the built-in ones (the default), or the built-in ones of 2011 alone]:value:(current built-in)' \
      '*--utf8[texts are UTF-8, whatever the character set of the file (the default)]' \
      '*--raw[texts are the bytes of the file, as they stand]' \
      '--help[explain the command]' \
      '*:file:_files'
    ;;
  image)
    _arguments \
      '*--frame[the frame, counted from 1 (default 1)]:N:_files' \
      '*--size[scale the picture\: its longer side has N pixels (default\: as it is)]:N:_files' \
      '*-o[the PNG file to write; - is the standard output]:OUT:_files' \
      '*--output[the PNG file to write; - is the standard output]:OUT:_files' \
      '--help[explain the command]' \
      '*:file:_files'
    ;;
  set)
    _arguments \
      '*-r[work on the files in directories, too]' \
      '*--recursive[work on the files in directories, too]' \
      '*--files-from[work on the files that a file names, one on each line; - is the standard input]:LIST:_files' \
      '*-o[the file to write; with several files, or a directory, the folder for them; - is the standard output]:OUT:_files' \
      '*--output[the file to write; with several files, or a directory, the folder for them; - is the standard output]:OUT:_files' \
      '*--in-place[write each file over itself; it is replaced when the new one is complete]' \
      '*--force[take values that their value representation or multiplicity does not allow]' \
      '*--edition[the tables to answer by\: those of today'\''s standard behind the built-in ones (the default), or the built-in ones of 2011 alone]:value:(current built-in)' \
      '*--utf8[texts are UTF-8, whatever the character set of the file (the default)]' \
      '*--raw[texts are the bytes of the file, as they stand]' \
      '--help[explain the command]' \
      '*:file:_files'
    ;;
  delete)
    _arguments \
      '*-r[work on the files in directories, too]' \
      '*--recursive[work on the files in directories, too]' \
      '*--files-from[work on the files that a file names, one on each line; - is the standard input]:LIST:_files' \
      '*-t[the element, or the item of a sequence, to remove; may be repeated]:PATH:_files' \
      '*--tag[the element, or the item of a sequence, to remove; may be repeated]:PATH:_files' \
      '*--private[remove all private elements, in sequences, too]' \
      '*-o[the file to write; with several files, or a directory, the folder for them; - is the standard output]:OUT:_files' \
      '*--output[the file to write; with several files, or a directory, the folder for them; - is the standard output]:OUT:_files' \
      '*--in-place[write each file over itself; it is replaced when the new one is complete]' \
      '*--edition[the tables to answer by\: those of today'\''s standard behind the built-in ones (the default), or the built-in ones of 2011 alone]:value:(current built-in)' \
      '--help[explain the command]' \
      '*:file:_files'
    ;;
  anonymize)
    _arguments \
      '*-r[work on the files in directories, too]' \
      '*--recursive[work on the files in directories, too]' \
      '*--files-from[work on the files that a file names, one on each line; - is the standard input]:LIST:_files' \
      '*-o[the file to write; with several files, or a directory, the folder for them; - is the standard output]:OUT:_files' \
      '*--output[the file to write; with several files, or a directory, the folder for them; - is the standard output]:OUT:_files' \
      '*--in-place[write each file over itself; it is replaced when the new one is complete]' \
      '*--retain-uids[keep the UIDs of instances]' \
      '*--retain-dates[keep dates and times]' \
      '*--modify-dates[move dates by so many days (--modify-dates=-30\: back) and keep times; what is no date is treated as without the option]:DAYS:_files' \
      '*--retain-device-identity[keep what identifies devices]' \
      '*--retain-institution-identity[keep what identifies institutions]' \
      '*--retain-patient-characteristics[keep age, sex, size, weight and the like]' \
      '*--retain-safe-private[keep the private elements of blocks that the data set itself calls safe (0008,0300)]' \
      '*--key[the secret that new UIDs are made with\: with the same key they are the same in every run; a file that does not exist is made]:FILE:_files' \
      '--help[explain the command]' \
      '*:file:_files'
    ;;
  save)
    _arguments \
      '*--mode[the encoding; as-read is the default; data of a compressed transfer syntax stay explicit little endian, whatever the mode]:value:(explicit-le implicit-le explicit-be as-read)' \
      '*--bare[write neither preamble nor file meta information]' \
      '*--undefined-lengths[write sequences and items with delimiters]' \
      '*--flags[open flags, as those of dump]:N:_files' \
      '*--edition[the tables to answer by\: those of today'\''s standard behind the built-in ones (the default), or the built-in ones of 2011 alone]:value:(current built-in)' \
      '--help[explain the command]' \
      '*:file:_files'
    ;;
  from-json)
    _arguments \
      '*-o[the file to write; for several data sets the folder for 000001.dcm and so on]:OUT:_files' \
      '*--output[the file to write; for several data sets the folder for 000001.dcm and so on]:OUT:_files' \
      '*--bulk-dir[where the data of a BulkDataURI are, in a file of the URI'\''s last part, or the part of it that "?offset=N&length=N" says; no other file is ever read, and no symbolic link is followed]:DIR:_files' \
      '*--edition[the tables to answer by\: those of today'\''s standard behind the built-in ones (the default), or the built-in ones of 2011 alone]:value:(current built-in)' \
      '*--utf8[texts are UTF-8, whatever the character set of the file (the default)]' \
      '*--raw[texts are the bytes of the file, as they stand]' \
      '--help[explain the command]' \
      '*:file:_files'
    ;;
  disc)
    _arguments \
      '*-o[the directory that becomes the medium\: a new one, or an empty one]:DIR:_files' \
      '*--output[the directory that becomes the medium\: a new one, or an empty one]:DIR:_files' \
      '*--size[how much a medium holds, such as 650M or 4.7G\: more is divided over the media DIR/DISC0001 and so on, studies as wholes where they fit; k, M and G count by thousands, Ki, Mi and Gi by 1024]:N:_files' \
      '*--web[add INDEX.HTM and IHE_PDI\: an overview with small pictures and reports for every web browser]' \
      '*--icons[images have icons of at most N pixels in square in the DICOMDIR, up to 256]:N:_files' \
      '*--transfer-syntax[explicit writes what is implicit, big endian or deflated as explicit little endian; what is compressed stays so; as-is, the default, copies files]:value:(as-is explicit)' \
      '*--profile[store only what this media application profile allows, such as STD-GEN-CD]:NAME:_files' \
      '*--file-set-id[up to 16 characters (default\: DISC); of several media it ends with _1_OF_3]:ID:_files' \
      '*--image[make an image of the medium, to be burnt, by xorriso or genisoimage; of several media FILE gets their numbers]:FILE:_files' \
      '*--files-from[take the sources that a file names, one on each line; - is the standard input]:LIST:_files' \
      '--help[explain the command]' \
      '*:file:_files'
    ;;
  browse)
    _arguments \
      '*--json[print the same as JSON in UTF-8\: the members are named as the fields of the library'\''s objects; fullPath is a path that opens where the file is there]' \
      '*--files[print only the paths of the files, one on each line; those that are missing or outside are errors]' \
      '*--edition[the tables to answer by\: those of today'\''s standard behind the built-in ones (the default), or the built-in ones of 2011 alone]:value:(current built-in)' \
      '*--utf8[texts are UTF-8, whatever the character set of the file (the default)]' \
      '*--raw[texts are the bytes of the file, as they stand]' \
      '--help[explain the command]' \
      '*:file:_files'
    ;;
  mkdir)
    _arguments \
      '*--add[add the files, which are in DIR, to the DICOMDIR that is there, and all files of directories; files that it lists are not listed again]' \
      '*--remove[take the studies of these UIDs out of the DICOMDIR that is there; their files stay]' \
      '*--profile[accept what this media application profile allows, such as STD-GEN-CD; without it every DICOM file]:NAME:_files' \
      '*--standard-records[records have the types and keys that today'\''s standard has for what is no image (RT DOSE, VALUE MAP and so on); without it most of that is listed as IMAGE]' \
      '*--strict[when a file is refused no DICOMDIR is written, and the exit status is 1]' \
      '*--strict-names[refuse files whose names are no File IDs (up to 8 components of 8 characters A-Z, 0-9, _), with code 1; without it they are warned about]' \
      '*--icons[images have icons of at most N pixels in square, up to 256]:N:_files' \
      '*--series-icons[series have the icon of an image, too]' \
      '*--file-size[records say how large their files are]' \
      '*--fill-missing[make up patient IDs, study IDs, dates and times, and series numbers where they are empty]' \
      '*--file-set-id[up to 16 characters]:ID:_files' \
      '*--no-recurse[stay out of subdirectories]' \
      '*--no-list[write no dcmdir.lst]' \
      '*--allow-empty[write a DICOMDIR without records when nothing is accepted]' \
      '*--offshore[the files are below the directory FILES; DIR gets the DICOMDIR, which refers to them by their paths below FILES]:FILES:_files' \
      '--help[explain the command]' \
      '*:file:_files'
    ;;
  check)
    _arguments \
      '*-r[work on the files in directories, too]' \
      '*--recursive[work on the files in directories, too]' \
      '*--files-from[work on the files that a file names, one on each line; - is the standard input]:LIST:_files' \
      '*--profile[the media application profile, such as STD-GEN-CD; without one every DICOM file with the identifiers of a DICOMDIR is accepted]:NAME:_files' \
      '--help[explain the command]' \
      '*:file:_files'
    ;;
  verify)
    _arguments \
      '*--profile[files must be such as this media application profile allows]:NAME:_files' \
      '*--json[print the findings as JSON in UTF-8]' \
      '*--repair[when there are findings, make a new DICOMDIR of the files, in the place of the former one]' \
      '*--edition[the tables to answer by\: those of today'\''s standard behind the built-in ones (the default), or the built-in ones of 2011 alone]:value:(current built-in)' \
      '*--utf8[texts are UTF-8, whatever the character set of the file (the default)]' \
      '*--raw[texts are the bytes of the file, as they stand]' \
      '--help[explain the command]' \
      '*:file:_files'
    ;;
  tags)
    _arguments \
      '*-f[list every element with this text in its name]' \
      '*--find[list every element with this text in its name]' \
      '*--edition[the tables to answer by\: those of today'\''s standard behind the built-in ones (the default), or the built-in ones of 2011 alone]:value:(current built-in)' \
      '*--utf8[texts are UTF-8, whatever the character set of the file (the default)]' \
      '*--raw[texts are the bytes of the file, as they stand]' \
      '--help[explain the command]' \
      '*:file:_files'
    ;;
  uid)
    _arguments \
      '*--edition[the tables to answer by\: those of today'\''s standard behind the built-in ones (the default), or the built-in ones of 2011 alone]:value:(current built-in)' \
      '*--utf8[texts are UTF-8, whatever the character set of the file (the default)]' \
      '*--raw[texts are the bytes of the file, as they stand]' \
      '--help[explain the command]' \
      '*:file:_files'
    ;;
  modality)
    _arguments \
      '*--edition[the tables to answer by\: those of today'\''s standard behind the built-in ones (the default), or the built-in ones of 2011 alone]:value:(current built-in)' \
      '*--utf8[texts are UTF-8, whatever the character set of the file (the default)]' \
      '*--raw[texts are the bytes of the file, as they stand]' \
      '--help[explain the command]' \
      '*:file:_files'
    ;;
  profiles)
    _arguments \
      '*--names[print the names alone, one on each line]' \
      '--help[explain the command]' \
      '*:file:_files'
    ;;
  documentation)
    _arguments \
      '--help[explain the command]' \
      '*:file:_files'
    ;;
esac
