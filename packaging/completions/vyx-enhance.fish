# SPDX-License-Identifier: MIT
# Completion of the command vyx-enhance in fish.

complete -c vyx-enhance -l spatial -x -a '1 2 3 4' -d 'Enlarge so many times'
complete -c vyx-enhance -l algorithm -x -a 'sr\tsuper-resolution denoise\tdeblocking\ and\ denoising' -d 'What enlarges'
complete -c vyx-enhance -l denoise -x -d 'Denoise: level, 0 to 60'
complete -c vyx-enhance -l sharpen -x -d 'Sharpen: percent, 0 to 100'
complete -c vyx-enhance -l temporal -x -a '1 2 3 4 5' -d 'Pictures for each picture'
complete -c vyx-enhance -l method -x -a 'blend 4nb 8nb' -d 'How pictures in between are made'
complete -c vyx-enhance -l demo -d 'Leave the left half as it was'
complete -c vyx-enhance -l frames -x -d 'Take only the first pictures'
complete -c vyx-enhance -s h -l help -d 'Explain the options'
